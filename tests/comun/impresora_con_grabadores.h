#pragma once

// A fixture for the component's commands watched through recording targets:
// the current printer, whose printable area is 8 x 10.5 inches (a letter
// sheet less quarter-inch margins), and the preview, a whole 8.5 x 11 page.
// The document is shown and recorded; its spool file goes at tear-down.

#include <gtest/gtest.h>

#include "comun/objeto_grabador.h"
#include "comun/utilerias_de_prueba.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/impresoras.h"
#include "target/modulo4.h"

namespace kalo::prueba {

template <class Base = ::testing::Test>
class ConImpresoraYVistaGrabadoras : public Base {
protected:
    void SetUp() override {
        impresora = NuevoGrabador();
        impresora->Pon(QStringLiteral("ScaleWidth"), 8.0f);
        impresora->Pon(QStringLiteral("ScaleHeight"), 10.5f);
        EstableceImpresoraActual(impresora);
        vista = NuevoGrabador();
        vista->Pon(QStringLiteral("ScaleWidth"), 8.5);
        vista->Pon(QStringLiteral("ScaleHeight"), 11.0);
        imp.Imagen2 = vista;
        imp.Pantalla = true;
        imp.Archivo = true;
    }
    void TearDown() override {
        imp.sq = nullptr;
        BorraReporte(imp.DB);
    }
    virtual std::shared_ptr<ObjetoGrabador> NuevoGrabador() { return std::make_shared<ObjetoGrabador>(); }

    Impresora imp;
    std::shared_ptr<ObjetoGrabador> impresora, vista;
};

}  // namespace kalo::prueba
