// The kaloimpresora command on files from a hostile sender: each ends quickly
// with its exit code and a message, and nothing from the file reaches the
// terminal raw.

#include <sqlite3.h>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "comun/utilerias_de_prueba.h"

using namespace Qt::StringLiterals;

namespace {

struct Salida {
    int codigo = -1;
    QString out, err;
};

Salida Corre(const QTemporaryDir& dir, const QStringList& args) {
    QProcess p;
    auto entorno = QProcessEnvironment::systemEnvironment();
    entorno.insert(u"QT_QPA_PLATFORM"_s, u"offscreen"_s);
    entorno.insert(u"CUPS_SERVER"_s, u"127.0.0.1:1"_s);  // never the machine's printers
    entorno.insert(u"KALO_CARPETA_DE_IMPRESOS"_s, dir.filePath(u"impresos"_s));
    p.setProcessEnvironment(entorno);
    p.start(QString::fromUtf8(KALO_HERRAMIENTA), args);
    EXPECT_TRUE(p.waitForFinished(60000)) << args.join(u' ').toStdString();
    return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()), QString::fromUtf8(p.readAllStandardError())};
}

QString Base(const QTemporaryDir& dir, const char* nombre, const QByteArray& sql) {
    const QString ruta = dir.filePath(QString::fromLatin1(nombre));
    sqlite3* bd = nullptr;
    EXPECT_EQ(sqlite3_open(ruta.toUtf8().constData(), &bd), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(bd, sql.constData(), nullptr, nullptr, nullptr), SQLITE_OK) << sqlite3_errmsg(bd);
    sqlite3_close(bd);
    return ruta;
}

const QByteArray kSource =
    "CREATE TABLE source( pagina INTEGER, source TEXT, row INTEGER, contenido TEXT, fuente TEXT, fsize REAL, "
    "nrow REAL, ncol REAL, bold INTEGER, italic INTEGER );";

// Two documents recorded into one file by two objects: every row number twice.
const QByteArray kDosAUnaVez = kSource +
    "INSERT INTO source( pagina, row, source ) VALUES (1, 1, 'IniciaDocumento'), (1, 2, 'PaginaNueva'), "
    "(2, 3, 'FinDocumento'), (1, 1, 'IniciaDocumento'), (1, 2, 'PaginaNueva'), (2, 3, 'FinDocumento');";

TEST(HerramientaHostil, CadaArchivoTerminaConSuCodigoYSuMotivo) {
    QTemporaryDir dir;
    const QString pdf = dir.filePath(u"salida.pdf"_s);
    const QString vista = Base(dir, "vista.rep",
                               "CREATE VIEW source( pagina, source, row, contenido, fuente, fsize, nrow, ncol, bold, "
                               "italic ) AS WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c) "
                               "SELECT 1, randomblob(1000000), x, '', '', 0, 0, 0, 0, 0 FROM c;");
    const QString repetidos = Base(dir, "repetidos.rep", kDosAUnaVez);
    const QString grande = Base(dir, "grande.rep",
                                kSource + "INSERT INTO source( pagina, row, source, contenido ) VALUES "
                                          "(1, 1, 'IniciaDocumento', ''), "
                                          "(1, 2, 'Say Fn(\"1\"),Fn(\"1\"),\"x\"', printf('%.*c', 200000, 'x')), "
                                          "(1, 3, 'FinDocumento', '');");
    QFile danado(Base(dir, "danado.rep", kSource + "INSERT INTO source( row, source ) VALUES (1, 'PaginaNueva');"));
    ASSERT_TRUE(danado.open(QIODevice::ReadWrite));
    danado.seek(4096);
    danado.write(QByteArray(4096, '\xff'));  // the table's page
    danado.close();
    struct Caso {
        QStringList args;
        int codigo;
        QString enErr;
    } casos[] = {
        {{u"resumen"_s, vista}, 2, u"contiene la vista «source»"_s},
        {{u"imprime"_s, vista, u"--pdf"_s, pdf}, 2, u"contiene la vista «source»"_s},
        {{u"resumen"_s, danado.fileName()}, 2, u"está dañado"_s},
        {{u"imprime"_s, repetidos, u"--estricto"_s, u"--pdf"_s, pdf}, 3,
         u"3 renglones con número repetido y 2 fuera de orden; no se imprimió nada"_s},
        {{u"imprime"_s, repetidos, u"--pdf"_s, pdf}, 0, u"aviso: 3 renglones con número repetido y 2 fuera de orden"_s},
        {{u"imprime"_s, grande, u"--estricto"_s, u"--pdf"_s, pdf}, 3, u"renglón 2: el renglón tiene un valor de más de 64 KiB"_s},
    };
    for (const Caso& c : casos) {
        const Salida s = Corre(dir, c.args);
        EXPECT_EQ(s.codigo, c.codigo) << c.args.join(u' ').toStdString() << "\n" << s.err.toStdString();
        EXPECT_TRUE(s.err.contains(c.enErr)) << c.args.join(u' ').toStdString() << "\n" << s.err.toStdString();
    }
    const Salida r = Corre(dir, {u"resumen"_s, repetidos});
    EXPECT_EQ(r.codigo, 0);
    for (const QString& t : {u"Renglones con número repetido: 3"_s, u"Renglones fuera de orden: 2"_s})
        EXPECT_TRUE(r.out.contains(t)) << r.out.toStdString();
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files).filter(u"-wal"_s), QStringList());
}

TEST(HerramientaHostil, ElTextoDelArchivoLlegaEscapadoYLosAvisosSeCuentan) {
    QTemporaryDir dir;
    QByteArray guion = "IniciaDocumento\n"
                       "EstableceFuente \"\x1b]0;pwned\x07\xe2\x80\xae\",Fn(\"10\")\n"
                       "\x1b[2J\x1b[31mBorra\n";
    for (int i = 0; i < 500; ++i) guion += "AbrirCajonDeDinero \"COM1\"\n";
    guion += "FinDocumento\n";
    const QString archivo = kalo::prueba::Escribe(dir.filePath(u"escapes.txt"_s), guion);

    const Salida r = Corre(dir, {u"resumen"_s, archivo});
    EXPECT_EQ(r.codigo, 0);
    EXPECT_TRUE(r.out.contains(u"  \\x1B]0;pwned\\x07\\u202E 10"_s)) << r.out.toStdString();
    EXPECT_TRUE(r.out.contains(u"Comando no permitido en un guion: \\x1B[2J\\x1B[31mBorra"_s)) << r.out.toStdString();
    EXPECT_TRUE(r.out.contains(u"Renglones mal formados: 501"_s));
    EXPECT_TRUE(r.out.contains(u"… y 401 más que no se muestran"_s));

    const Salida s = Corre(dir, {u"imprime"_s, archivo, u"--pdf"_s, dir.filePath(u"e.pdf"_s)});
    EXPECT_EQ(s.codigo, 0);
    EXPECT_EQ(s.err.count(u"renglón omitido"_s), 100) << s.err.left(2000).toStdString();
    EXPECT_TRUE(s.err.contains(u"401 avisos más que no se muestran"_s)) << s.err.right(500).toStdString();
    for (const QString& t : {r.out, r.err, s.out, s.err}) {
        EXPECT_FALSE(t.contains(QChar(0x1b)));
        EXPECT_FALSE(t.contains(QChar(0x202e)));
    }
}

// Coordinates no page can hold: the command ends well, the drawing code
// overflows with the runtime's error instead of in its integers (the
// sanitizer build would stop on the latter).
TEST(HerramientaHostil, CoordenadasGigantesDesbordanSinRomperNada) {
    QTemporaryDir dir;
    const QString archivo = kalo::prueba::Escribe(
        dir.filePath(u"lejos.txt"_s),
        "IniciaDocumento\n"
        "Box Fn(\"-99999999999\"),Fn(\"1\"),Fn(\"2\"),Fn(\"3\")\n"
        "FilledBox Fn(\"1\"),Fn(\"1\"),Fn(\"99999999999999999999\"),Fn(\"3\"),Fn(\"255\")\n"
        "Linea Fn(\"-99999999999\"),Fn(\"1\"),Fn(\"99999999999\"),Fn(\"3\")\n"
        "PCircle Fn(\"1\"),Fn(\"1\"),Fn(\"99999999999\")\n"
        "Say Fn(\"99999999999\"),Fn(\"-99999999999\"),\"lejos\"\n"
        "Bar128 Fn(\"40\"),\"ABC\",Fn(\"1\"),Fn(\"1\"),Fn(\"99999999999\"),Fn(\"99999999999\"),True\n"
        "Picture \"no.png\",Fn(\"-99999999999\"),Fn(\"1\"),Fn(\"99999999999\"),Fn(\"1\")\n"
        "Box Fn(\"1\"),Fn(\"1\"),Fn(\"2\"),Fn(\"3\")\n"
        "FinDocumento\n");
    const QString carpeta = dir.filePath(u"png"_s);
    const Salida s = Corre(dir, {u"imprime"_s, archivo, u"--png"_s, carpeta, u"--resolucion"_s, u"20"_s});
    EXPECT_EQ(s.codigo, 0) << s.err.toStdString();
    EXPECT_TRUE(s.err.contains(u"renglón 5: PCircle: error 6"_s)) << s.err.toStdString();
    // The last box is drawn as ever: dark pixels at its left edge, 1 inch in.
    const QImage pagina(QDir(carpeta).filePath(u"pagina-001.png"_s));
    ASSERT_FALSE(pagina.isNull());
    EXPECT_LT(qGray(pagina.pixel(20, 40)), 128);
}

}  // namespace
