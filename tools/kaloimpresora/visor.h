#pragma once

// The viewer window of a spool file: one page at a time, replayed alone at
// the zoom's resolution, so a long report opens at once and stays light.

#include <QImage>
#include <QMainWindow>
#include <QString>
#include <utility>
#include <vector>

#include "spool/reproduccion.h"

class QLabel;
class QScrollArea;
class QSpinBox;

namespace kalo::herramienta {

class VisorDeReporte : public QMainWindow {
public:
    // Reads the file's outline; raises as AbreGuion does.
    explicit VisorDeReporte(const QString& archivo, QWidget* padre = nullptr);

    int TotalDePaginas() const { return static_cast<int>(paginas_.size()); }
    // From 1, across all the file's documents; 0 when it has none.
    int PaginaActual() const { return actual_; }
    void IrAPagina(int n);
    void Siguiente() { IrAPagina(actual_ + 1); }
    void Anterior() { IrAPagina(actual_ - 1); }
    // 1 is 96 dots per inch.
    double Zoom() const { return zoom_; }
    void CambiaZoom(double zoom);
    const QImage& Imagen() const { return imagen_; }
    // What the status line says about the page shown.
    QString Estado() const;

    // Every page into one PDF file; false with the reason in *error.
    bool ExportaPdf(const QString& archivo, QString* error = nullptr);
    // Every page of the file to the named print queue.
    bool ImprimeEn(const QString& impresora, QString* error = nullptr);

private:
    void Pinta();
    void PideImpresion();
    void PideExportacion();
    bool Reproducir(const std::shared_ptr<Objeto>& impresora, const SeleccionDePaginas& seleccion,
                    QString* error);

    QString archivo_;
    std::vector<std::pair<int, int>> paginas_;  // (document, page)
    int actual_ = 0;
    double zoom_ = 1;
    QImage imagen_;
    int avisos_ = 0;
    QLabel* lamina_ = nullptr;
    QScrollArea* desplazamiento_ = nullptr;
    QSpinBox* selector_ = nullptr;
    QLabel* total_ = nullptr;
};

// Shows the viewer until it is closed; the exit code of the command.
int MuestraVisor(const QString& archivo);

}  // namespace kalo::herramienta
