#pragma once

// What the three parameter dialogs share: a fixed-size modal window laid out
// in twips from its design tables, panels docked to its edges, controls named
// as published, the keyboard order from the tab indexes, and one way out
// (Descarga) that every close goes through.

#include <QDate>
#include <QDialog>
#include <QString>
#include <functional>
#include <memory>
#include <vector>

#include "kaloimpresora/automatizacion.h"

class QCheckBox;
class QDateEdit;
class QLabel;
class QPushButton;

namespace kalo {

class Impresora;

namespace dialogos {

// Twips of the design to pixels at the screen's logical resolution.
int PixelesX(int twips);
int PixelesY(int twips);

// Automation dates (days since 30 December 1899) and calendar days.
QDate DiaDeFecha(double fecha);
double FechaDeDia(QDate dia);

// A check box's value as the dialogs use it: 0 clear, 1 ticked, 2 grey;
// only 1 counts as ticked.
int Valor(const QCheckBox* casilla);
void PonValor(QCheckBox* casilla, int valor);

// The dialogs cannot show a window that nobody can see: raises when the
// component had to go offscreen for lack of a display. Creates the
// application object when the host has none.
void AseguraPantalla(const QString& origen);

class Formulario : public QDialog {
public:
    enum class Anclaje { Arriba, Abajo, Libre };

    // Client area as designed, in twips.
    Formulario(const QString& nombre, int anchoTwips, int altoTwips);

    Impresora* objImpresora = nullptr;
    std::shared_ptr<Objeto> objAmbiente;

    // A full-width panel (or, Libre, one at its own place and width).
    QWidget* Panel(const QString& nombre, Anclaje anclaje, int alto, int izquierda = 0, int arriba = 0,
                   int ancho = 0);
    // Hides a panel; the docked ones below close up. The window keeps its
    // height: whoever hides a panel says whether the window shrinks.
    void OcultaPanel(QWidget* panel);
    // Changes the client height, in twips.
    void CambiaAlto(int altoTwips);
    int AltoTwips() const { return altoTwips_; }

    QLabel* Etiqueta(QWidget* panel, const QString& nombre, const QString& texto, int l, int t, int w, int h,
                     int tab);
    QCheckBox* Casilla(QWidget* panel, const QString& nombre, const QString& texto, int l, int t, int w, int h,
                       int tab, int valor);
    QPushButton* Boton(QWidget* panel, const QString& nombre, const QString& texto, int l, int t, int w, int h,
                       int tab);
    QDateEdit* Fecha(QWidget* panel, const QString& nombre, int l, int t, int w, int h, int tab);
    // Places any other control, in twips, and gives it its tab index.
    void Coloca(QWidget* control, int l, int t, int w, int h, int tab);
    // A control that takes the focus in its tab index's place.
    void OrdenDeTabulacion(QWidget* control, int tab);
    // Links the keyboard order from the tab indexes given so far.
    void CierraOrden();

    // The button that Escape presses.
    void BotonDeCancelar(QPushButton* boton) { cancelar_ = boton; }

    // Runs an event handler of the dialog. A failure it does not handle
    // itself ends the handler there and is reported on the log: the event
    // loop cannot carry it, and the window stays as the handler left it.
    void Evento(const char* nombre, const std::function<void()>& cuerpo);

protected:
    // Every way out: the buttons, Escape and the close box.
    void done(int resultado) override;
    // What the dialog does when it unloads; nothing unless it says so.
    virtual void Descarga() {}
    void keyPressEvent(QKeyEvent* evento) override;
    void resizeEvent(QResizeEvent* evento) override;
    void showEvent(QShowEvent* evento) override;

private:
    struct PanelAnclado {
        QWidget* panel;
        Anclaje anclaje;
        int alto, izquierda, arriba, ancho;
    };
    void Acomoda();

    int anchoTwips_;
    int altoTwips_;
    std::vector<PanelAnclado> paneles_;
    std::vector<std::pair<int, QWidget*>> orden_;
    QPushButton* cancelar_ = nullptr;
    bool descargado_ = false;
};

}  // namespace dialogos
}  // namespace kalo
