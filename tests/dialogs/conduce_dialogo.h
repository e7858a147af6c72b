#pragma once

// Driving the modal dialogs from a test: what the test does once the window
// is up runs inside the dialog's own event loop, and a window left open is
// closed after a while so a failing test never hangs.

#include <QApplication>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

#include "kaloimpresora/ambiente.h"
#include "kaloimpresora/utilerias.h"
#include "runtime/aplicacion.h"

namespace kalo::prueba {

// The control of a window by its published name.
template <class T = QWidget>
T* Control(QWidget& ventana, const QString& nombre) {
    T* c = ventana.findChild<T*>(nombre);
    if (!c) ADD_FAILURE() << "no hay control " << nombre.toStdString() << " en " << ventana.objectName().toStdString();
    return c;
}

// Runs `accion` on the modal window once it is shown, while the caller sits
// in the dialog method. The window's name must be `nombre`.
class AlMostrarse {
public:
    AlMostrarse(QString nombre, std::function<void(QWidget&)> accion) {
        AseguraAplicacion();
        QTimer::singleShot(0, [this, nombre, accion = std::move(accion)] {
            QWidget* w = QApplication::activeModalWidget();
            if (!w) {
                ADD_FAILURE() << "no se mostró ninguna ventana";
                return;
            }
            visto = true;
            EXPECT_EQ(w->objectName(), nombre);
            EXPECT_TRUE(QTest::qWaitForWindowActive(w));
            accion(*w);
        });
        vigia_.setSingleShot(true);
        QObject::connect(&vigia_, &QTimer::timeout, [] {
            if (QWidget* w = QApplication::activeModalWidget()) {
                ADD_FAILURE() << "la ventana " << w->objectName().toStdString() << " seguía abierta";
                w->close();
            }
        });
        vigia_.start(20000);
    }
    ~AlMostrarse() { vigia_.stop(); }

    bool visto = false;

private:
    QTimer vigia_;
};

// An environment whose working period is February 2024 (day 45351 is its
// last day, the date the default utility object gives).
inline std::shared_ptr<Ambiente> AmbienteDeFebrero() {
    auto a = std::make_shared<Ambiente>();
    a->Periodo1 = 2024;
    a->Periodo2 = 2;
    return a;
}
inline constexpr double kUltimoDeFebrero = 45351;

// The component's utility object, logging the dialogs' calls to it.
class UtileriasVigiladas : public UtileriasPredeterminadas {
public:
    QStringList registro;
    double FechaDePeriodo(const Variant& p1, const Variant& p2) override {
        registro << QStringLiteral("FechaDePeriodo(%1,%2)").arg(CStr(p1), CStr(p2));
        return UtileriasPredeterminadas::FechaDePeriodo(p1, p2);
    }
    void PreparaFormulario(QObject* f, const std::shared_ptr<Objeto>& a, const QString& t) override {
        registro << QStringLiteral("PreparaFormulario(%1,%2,\"%3\")").arg(f->objectName(), Nombre(a), t);
    }
    void CierraFormulario(QObject* f, const std::shared_ptr<Objeto>& a, const QString& t) override {
        registro << QStringLiteral("CierraFormulario(%1,%2,\"%3\")").arg(f->objectName(), Nombre(a), t);
    }
    void EnviaTeclas(const QString& teclas, bool espera) override {
        registro << QStringLiteral("EnviaTeclas(%1,%2)").arg(teclas, espera ? u"True" : u"False");
        UtileriasPredeterminadas::EnviaTeclas(teclas, espera);
    }
    QString TextoDeMensaje(int32_t numero, const std::shared_ptr<Objeto>& a) override {
        registro << QStringLiteral("TextoDeMensaje(%1,%2)").arg(numero).arg(Nombre(a));
        return UtileriasPredeterminadas::TextoDeMensaje(numero, a);
    }

    // Only the calls of one operation.
    QStringList De(const QString& operacion) const { return registro.filter(operacion + u'('); }

private:
    static QString Nombre(const std::shared_ptr<Objeto>& a) {
        return !a ? QStringLiteral("Nothing") : QStringLiteral("ambiente");
    }
};

}  // namespace kalo::prueba
