// The suite's entry point. After every test it puts back what the component
// keeps per process or per thread, so no test depends on the order they run
// in, and a message box that nobody expected fails the test instead of
// waiting for a click that never comes.

#include <gtest/gtest.h>

#include "kaloimpresora/conversiones.h"
#include "kaloimpresora/impresoras.h"
#include "kaloimpresora/mensajes.h"
#include "kaloimpresora/utilerias.h"
#include "target/modulo4.h"

namespace {

void PresentadorInesperado() {
    kalo::EstablecePresentadorDeMensajes([](const QString& texto, int32_t, const QString&) {
        ADD_FAILURE() << "caja de mensaje inesperada: " << texto.toStdString();
        return kalo::respuesta::kAceptar;
    });
}

class Restablece : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo&) override { PresentadorInesperado(); }
    void OnTestEnd(const ::testing::TestInfo&) override {
        kalo::modulo4::Estado() = {};
        kalo::EstableceImpresoraActual(nullptr);
        kalo::SustituyeUtilerias(nullptr);
        kalo::EstableceLocalDelUsuario(std::nullopt);
        PresentadorInesperado();
    }
};

}  // namespace

int main(int argc, char** argv) {
    // Never the machine's print server: forms would be saved on its printers.
    // The tests that print start their own (tests/cups).
    qputenv("CUPS_SERVER", "127.0.0.1:1");
    ::testing::InitGoogleTest(&argc, argv);
    ::testing::UnitTest::GetInstance()->listeners().Append(new Restablece);
    return RUN_ALL_TESTS();
}
