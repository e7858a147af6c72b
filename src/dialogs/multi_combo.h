#pragma once

// The data-lookup control of the data-range dialog: an entry box (the
// dialog's txtFields(i)) and a button that drops down the rows of DataQuery
// run on DataConnection. The list shows every column and reads rows as they
// scroll into view, so a long lookup opens at once. Choosing a row puts its
// first column in the entry box.

#include <QString>
#include <QWidget>
#include <memory>

#include "kaloimpresora/automatizacion.h"

class QFrame;
class QLineEdit;
class QTableView;
class QToolButton;

namespace kalo::dialogos {

class ModeloDeConsulta;

class MultiCombo : public QWidget {
public:
    // Named "MultiCombo1(i)", its entry box "txtFields(i)".
    MultiCombo(int indice, QWidget* padre);
    ~MultiCombo() override;

    QLineEdit* txtFields() const { return texto_; }

    std::shared_ptr<Objeto> DataConnection;  // any connection with Execute
    QString DataQuery;

    // Runs the query and opens the list under the control. The query's
    // failure reaches the caller, and nothing opens.
    void ShowData();

    // The open list, for tests and hosts that drive it; nullptr when closed.
    QTableView* Lista() const;

protected:
    void resizeEvent(QResizeEvent* evento) override;
    bool eventFilter(QObject* objeto, QEvent* evento) override;

private:
    void Elige(int fila);
    void CierraLista();

    QLineEdit* texto_;
    QToolButton* boton_;
    QFrame* emergente_ = nullptr;
    QTableView* vista_ = nullptr;
    std::unique_ptr<ModeloDeConsulta> modelo_;
};

}  // namespace kalo::dialogos
