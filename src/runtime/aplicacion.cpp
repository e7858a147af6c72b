#include "runtime/aplicacion.h"

#include <QApplication>
#include <QGuiApplication>
#include <cstdlib>

namespace kalo {

namespace {
bool sinPantallaPropia = false;
}

void AseguraAplicacion() {
    if (QCoreApplication::instance()) return;
    const bool hayPantalla = std::getenv("DISPLAY") || std::getenv("WAYLAND_DISPLAY");
    if (!hayPantalla && !std::getenv("QT_QPA_PLATFORM")) {
        setenv("QT_QPA_PLATFORM", "offscreen", 0);
        sinPantallaPropia = true;
    }
    // Qt keeps references to argc and argv for the application's lifetime.
    static int argc = 1;
    static char nombre[] = "kaloimpresora";
    static char* argv[] = {nombre, nullptr};
    // Deliberately never destroyed: it belongs to the process from now on.
    new QApplication(argc, argv);
}

bool SinPantallaVisible() { return sinPantallaPropia; }

}  // namespace kalo
