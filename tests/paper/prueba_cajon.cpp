// The cash drawer on plain files, FIFOs and missing paths, through the
// member as a host calls it and through «kaloimpresora cajon». Raw jobs on
// a print-server queue are in tests/cups.

#include "comun/prueba.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <QScopeGuard>
#include <future>

#include "comun/herramienta.h"
#include "paper/cajon.h"

namespace {

QByteArray Lee(const QString& ruta) {
    QFile f(ruta);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("(sin archivo)");
}

const QString kPatada = u"\x1bp"_s + QChar(0) + QChar(0x19) + QChar(0xFA);

class Cajon : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(dir.isValid()); }
    QString Fifo() {
        const QString ruta = dir.filePath(u"cajon.fifo"_s);
        EXPECT_EQ(mkfifo(QFile::encodeName(ruta).constData(), 0600), 0);
        return ruta;
    }
    QTemporaryDir dir;
    Impresora imp;
};

TEST_F(Cajon, CadaValorSaleComoLoEscribePrintEnElArchivoQueTrunca) {
    const prueba::ConLocal espanol("es_ES");
    const QString ruta = prueba::Escribe(dir.filePath(u"cajon.bin"_s), "lo que había antes, más largo");
    const std::pair<Variant, QByteArray> casos[] = {
        {kPatada, QByteArray("\x1bp\0\x19\xfa\r\n", 7)},
        {u"€…Ÿ☺ñ"_s, "\x80\x85\x9f?\xf1\r\n"},  // Windows-1252, "?" for what it lacks
        {int16_t{7}, " 7 \r\n"},
        {-2.5, "-2,5 \r\n"},
        {Variant::Nulo(), "Null\r\n"},
        {Variant(), "\r\n"},
        {true, "True\r\n"},
    };
    for (const auto& [codigo, bytes] : casos) {
        imp.Llama(u"AbrirCajonDeDinero"_s, {ruta, codigo});
        EXPECT_EQ(Lee(ruta), bytes) << bytes.toHex().toStdString();
    }
    // A code that is no text still opens, and so truncates, the file.
    imp.Llama(u"AbrirCajonDeDinero"_s, {ruta, Variant::Nada()});
    EXPECT_EQ(Lee(ruta), QByteArray());
    EXPECT_EQ(imp.nLinea, 0);
}

TEST_F(Cajon, LosPuertosDeSiempreLlevanASusDispositivos) {
    const auto existe = [](const QString& r) { return r == u"/dev/usb/lp0"_s || r == u"/dev/usb/lp1"_s; };
    // Port; queue, path, and "+" when a plain file may be created there.
    for (const auto& [puerto, destino] : std::initializer_list<std::pair<QString, QString>>{
             {u"LPT1"_s, u"|/dev/usb/lp0"_s},
             {u"lpt2:"_s, u"|/dev/usb/lp1"_s},
             {u"LPT3"_s, u"|/dev/lp2"_s},
             {u"PRN"_s, u"|/dev/usb/lp0"_s},
             {u"COM1"_s, u"|/dev/ttyS0"_s},
             {u"com10:"_s, u"|/dev/ttyS9"_s},
             {u"\\\\caja\\Tickets"_s, u"Tickets|"_s},
             {u"Tickets"_s, u"Tickets|Tickets+"_s},
             {u"/dev/ttyUSB0"_s, u"|/dev/ttyUSB0"_s},
             {u"salida/cajon.txt"_s, u"|salida/cajon.txt+"_s},
         }) {
        const cajon::Destino d = cajon::ResuelvePuerto(puerto, existe);
        EXPECT_EQ(d.cola + u'|' + d.ruta + (d.creable ? u"+"_s : QString()), destino) << puerto.toStdString();
    }
}

// Twice in a row: the reader sees each line end with the writer gone, so
// nothing stayed open between calls.
TEST_F(Cajon, UnFifoConLectorRecibeCadaLlamadaYSinLectorNoDetieneANadie) {
    const QString fifo = Fifo();
    std::promise<void> primera;
    auto lector = std::async(std::launch::async, [&] {
        QByteArray leido;
        for (int vez = 0; vez < 2; ++vez) {
            QFile f(fifo);
            if (!f.open(QIODevice::ReadOnly)) return QByteArray("(sin abrir)");
            leido += f.readAll() + '|';
            f.close();
            if (vez == 0) primera.set_value();
        }
        return leido;
    });
    const auto suelta = qScopeGuard([&] {
        // Should a check fail, a reader still waiting gets writers until it ends.
        while (lector.valid() && lector.wait_for(std::chrono::milliseconds(20)) != std::future_status::ready)
            if (const int fd = ::open(QFile::encodeName(fifo).constData(), O_WRONLY | O_NONBLOCK); fd >= 0) ::close(fd);
    });
    imp.Llama(u"AbrirCajonDeDinero"_s, {fifo, u"uno"_s});
    // Whatever a writer leaves in a FIFO is lost when its reader closes it.
    ASSERT_EQ(primera.get_future().wait_for(std::chrono::seconds(10)), std::future_status::ready);
    imp.Llama(u"AbrirCajonDeDinero"_s, {fifo, u"dos"_s});
    ASSERT_EQ(lector.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    EXPECT_EQ(lector.get(), "uno\r\n|dos\r\n|");

    auto sinLector = std::async(std::launch::async, [&] { return cajon::Envia(fifo, "x"); });
    ASSERT_EQ(sinLector.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    EXPECT_EQ(sinLector.get().resultado, cajon::Resultado::TiempoAgotado);

    for (const QString& falta : {u"/dev/kalo-no-existe"_s, dir.filePath(u"no/hay/carpeta"_s)}) {
        EXPECT_EQ(cajon::Envia(falta, "x").resultado, cajon::Resultado::NoExiste);
        EXPECT_FALSE(QFile::exists(falta));
    }
}

TEST_F(Cajon, LaOrdenDiceEnEspanolPorQueNoSeAbrio) {
    const QString fifo = Fifo(), archivo = dir.filePath(u"cajon.bin"_s);
    struct Caso {
        QStringList args;
        int codigo;
        QString mensaje;
    } casos[] = {
        {{archivo}, 0, u"Enviados 7 bytes a «%1»"_s.arg(archivo)},
        {{archivo, u"--codigo"_s, u"\\e@\\x80ñ"_s}, 0, u"Enviados 6 bytes"_s},
        {{u"COM77"_s}, 10, u"No existe «/dev/ttyS76» (COM77)"_s},
        {{fifo}, 13, u"no recibió los bytes en 2 segundos"_s},
    };
    for (const Caso& c : casos) {
        const prueba::Salida s = prueba::CorreHerramienta(QStringList{u"cajon"_s} + c.args);
        const QString salida = s.out + s.err;
        EXPECT_EQ(s.codigo, c.codigo) << salida.toStdString();
        EXPECT_TRUE(salida.contains(c.mensaje)) << salida.toStdString();
    }
    EXPECT_EQ(Lee(archivo), QByteArray("\x1b@\x80\xf1\r\n"));
}

}  // namespace
