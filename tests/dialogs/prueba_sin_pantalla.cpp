#include <QProcess>
#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// Without a display the component's own application is offscreen: the
// dialog refuses at once instead of blocking.
TEST(SinPantalla, ElDialogoFallaEnVezDeEsperar) {
    QProcess hijo;
    QProcessEnvironment entorno = QProcessEnvironment::systemEnvironment();
    for (const QString& v : {u"DISPLAY"_s, u"WAYLAND_DISPLAY"_s, u"QT_QPA_PLATFORM"_s}) entorno.remove(v);
    hijo.setProcessEnvironment(entorno);
    hijo.start(QStringLiteral(KALO_SIN_PANTALLA), {});
    ASSERT_TRUE(hijo.waitForFinished(30000));
    const QString salida = QString::fromUtf8(hijo.readAllStandardOutput());
    EXPECT_EQ(hijo.exitCode(), 0) << salida.toStdString();
    EXPECT_TRUE(salida.startsWith(u"445 "_s)) << salida.toStdString();
    EXPECT_TRUE(salida.contains(u"no hay pantalla"_s)) << salida.toStdString();
}

}  // namespace
