#pragma once

// Driving the modal dialogs from a test: what the test does once the window
// is up and active runs inside the dialog's own event loop, and a window left
// open is closed after a while so a failing test never hangs.

#include <QApplication>
#include <QTest>
#include <QTimer>
#include <functional>
#include <gtest/gtest.h>

#include "kaloimpresora/ambiente.h"
#include "kaloimpresora/utilerias.h"
#include "runtime/aplicacion.h"

namespace kalo::prueba {

template <class T = QWidget>
T* Control(QWidget& ventana, const QString& nombre) {
    T* c = ventana.findChild<T*>(nombre);
    if (!c) ADD_FAILURE() << "no hay control " << nombre.toStdString();
    return c;
}

class AlMostrarse {
public:
    AlMostrarse(QString nombre, std::function<void(QWidget&)> accion) {
        AseguraAplicacion();
        QTimer::singleShot(0, [this, nombre, accion = std::move(accion)] {
            QWidget* w = QApplication::activeModalWidget();
            if (!w) return;
            visto = w->objectName() == nombre;
            EXPECT_TRUE(visto) << w->objectName().toStdString();
            EXPECT_TRUE(QTest::qWaitForWindowActive(w));
            accion(*w);
        });
        vigia_.setSingleShot(true);
        QObject::connect(&vigia_, &QTimer::timeout, [] {
            if (QWidget* w = QApplication::activeModalWidget()) {
                ADD_FAILURE() << "la ventana seguía abierta";
                w->close();
            }
        });
        vigia_.start(20000);
    }

    bool visto = false;

private:
    QTimer vigia_;
};

// February 2024: the default utility object gives its last day, 45351.
inline std::shared_ptr<Ambiente> AmbienteDeFebrero() {
    auto a = std::make_shared<Ambiente>();
    a->Periodo1 = 2024;
    a->Periodo2 = 2;
    return a;
}
inline constexpr double kUltimoDeFebrero = 45351;

// The component's utility object, logging what the dialogs ask of it.
class UtileriasVigiladas : public UtileriasPredeterminadas {
public:
    QStringList registro;
    QStringList De(const QString& operacion) const { return registro.filter(operacion + u'('); }

    double FechaDePeriodo(const Variant& p1, const Variant& p2) override {
        registro << QStringLiteral("FechaDePeriodo(%1,%2)").arg(CStr(p1), CStr(p2));
        return UtileriasPredeterminadas::FechaDePeriodo(p1, p2);
    }
    void PreparaFormulario(QObject* f, const std::shared_ptr<Objeto>& a, const QString& t) override {
        registro << QStringLiteral("PreparaFormulario(%1,%2,\"%3\")").arg(f->objectName(), a ? u"true" : u"false", t);
    }
    void CierraFormulario(QObject* f, const std::shared_ptr<Objeto>& a, const QString& t) override {
        registro << QStringLiteral("CierraFormulario(%1,%2,\"%3\")").arg(f->objectName(), a ? u"true" : u"false", t);
    }
    void EnviaTeclas(const QString& teclas, bool espera) override {
        registro << QStringLiteral("EnviaTeclas(%1,%2)").arg(teclas, espera ? u"true" : u"false");
        UtileriasPredeterminadas::EnviaTeclas(teclas, espera);
    }
};

}  // namespace kalo::prueba
