// The kaloimpresora command on files from a hostile sender: exit codes and
// warnings, text from the file escaped, messages counted past a hundred.

#include "comun/prueba.h"

#include <sqlite3.h>

#include "comun/herramienta.h"

namespace {

using kalo::prueba::Salida;
const auto Corre = [](const QStringList& args) { return kalo::prueba::CorreHerramienta(args); };

TEST(HerramientaHostil, RenglonesRepetidosSeAvisanOSeRechazan) {
    QTemporaryDir dir;
    // Two documents recorded into one file by two objects: every row number twice.
    const QString archivo = dir.filePath(u"dos.rep"_s);
    sqlite3* bd = nullptr;
    ASSERT_EQ(sqlite3_open(archivo.toUtf8().constData(), &bd), SQLITE_OK);
    EXPECT_EQ(
        sqlite3_exec(bd,
                     "CREATE TABLE source( pagina INTEGER, source TEXT, row INTEGER, contenido TEXT, fuente TEXT, "
                     "fsize REAL, nrow REAL, ncol REAL, bold INTEGER, italic INTEGER ); "
                     "INSERT INTO source( row, source ) VALUES (1, 'IniciaDocumento'), (2, 'PaginaNueva'), "
                     "(3, 'FinDocumento'), (1, 'IniciaDocumento'), (2, 'PaginaNueva'), (3, 'FinDocumento');",
                     nullptr, nullptr, nullptr),
        SQLITE_OK);
    sqlite3_close(bd);
    const QString pdf = dir.filePath(u"dos.pdf"_s), desorden = u"3 renglones con número repetido y 2 fuera de orden"_s;
    const std::tuple<QStringList, int, QString, QString> casos[] = {
        {{u"imprime"_s, archivo, u"--estricto"_s, u"--pdf"_s, pdf}, 3, desorden + u"; no se imprimió nada"_s, {}},
        // Read in number order, the two documents interleave: two pages become four.
        {{u"imprime"_s, archivo, u"--pdf"_s, pdf}, 0, u"aviso: "_s + desorden, u"4 página(s)"_s},
        {{u"resumen"_s, archivo}, 0, {}, u"Renglones con número repetido: 3\nRenglones fuera de orden: 2\n"_s},
    };
    for (const auto& [args, codigo, enErr, enOut] : casos) {
        const Salida s = Corre(args);
        EXPECT_EQ(s.codigo, codigo) << s.err.toStdString();
        EXPECT_TRUE(s.err.contains(enErr) && s.out.contains(enOut)) << s.err.toStdString() << s.out.toStdString();
    }
}

TEST(HerramientaHostil, ElTextoDelArchivoLlegaEscapadoYLosAvisosSeCuentan) {
    QTemporaryDir dir;
    QByteArray guion =
        "IniciaDocumento\n"
        "EstableceFuente \"\x1b]0;pwned\x07\xe2\x80\xae\",Fn(\"10\")\n"
        "\x1b[2J\x1b[31mBorra\n"
        "Say Fn(\"1\"),Fn(\"1\"),\"" +
        QByteArray(100000, 'x') + "\"\n";
    for (int i = 0; i < 500; ++i) guion += "AbrirCajonDeDinero \"COM1\"\n";
    const QString archivo = kalo::prueba::Escribe(dir.filePath(u"escapes.txt"_s), guion + "FinDocumento\n");

    const Salida r = Corre({u"resumen"_s, archivo});
    const Salida s = Corre({u"imprime"_s, archivo, u"--pdf"_s, dir.filePath(u"e.pdf"_s)});
    EXPECT_EQ(r.codigo + s.codigo, 0) << r.err.toStdString() << s.err.toStdString();
    for (const QString& t : {u"  \\x1B]0;pwned\\x07\\u202E 10\n"_s, u"guion: \\x1B[2J\\x1B[31mBorra\n"_s,
                             u"renglón 4: la línea tiene más de 64 KiB"_s, u"Renglones mal formados: 502\n"_s,
                             u"… y 402 más que no se muestran"_s})
        EXPECT_TRUE(r.out.contains(t)) << t.toStdString() << "\n" << r.out.left(3000).toStdString();
    EXPECT_EQ(s.err.count(u"renglón omitido"_s), 100);
    EXPECT_TRUE(s.err.contains(u"escapes.txt: 402 avisos más que no se muestran"_s)) << s.err.right(300).toStdString();
    for (const QString& t : {r.out, r.err, s.out, s.err})
        EXPECT_FALSE(t.contains(QChar(0x1b)) || t.contains(QChar(0x202e)));
}

}  // namespace
