// Spool files made by a hostile sender: each is read or refused with its
// reason, quickly, and nothing appears or changes beside it.

#include "comun/prueba.h"

#include <sqlite3.h>
#include <unistd.h>
#include <QCryptographicHash>

#include "spool/lector.h"

namespace {

const QByteArray kSource =
    "CREATE TABLE source( pagina INTEGER, source TEXT, row INTEGER, contenido TEXT, fuente TEXT, fsize REAL, "
    "nrow REAL, ncol REAL, bold INTEGER, italic INTEGER );";

QByteArray Fila(int row, const QByteArray& source, const QByteArray& contenido = "''") {
    return "INSERT INTO source( row, source, contenido ) VALUES ( " + QByteArray::number(row) + ", " + source + ", " +
           contenido + " );";
}

// The connection stays open (a recorder still at work) unless cerrar; closed
// without folding its log, it leaves the log beside the file.
sqlite3* Base(const QString& ruta, const QByteArray& sql, bool cerrar = true, bool consolidar = true) {
    sqlite3* bd = nullptr;
    EXPECT_EQ(sqlite3_open(ruta.toUtf8().constData(), &bd), SQLITE_OK);
    sqlite3_db_config(bd, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, !consolidar, nullptr);
    EXPECT_EQ(sqlite3_exec(bd, ("PRAGMA synchronous = OFF; " + sql).constData(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(bd);
    if (!cerrar) return bd;
    sqlite3_close(bd);
    return nullptr;
}

// Names and contents of a folder's files, to tell that nothing was written.
QStringList Huella(const QString& carpeta) {
    QStringList h;
    for (const QString& n : QDir(carpeta).entryList(QDir::Files | QDir::Hidden)) {
        QFile f(QDir(carpeta).filePath(n));
        EXPECT_TRUE(f.open(QIODevice::ReadOnly));
        h << n + u' ' + QString::fromLatin1(QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha1).toHex());
    }
    return h;
}

// Each row read: its number, and its text or "rechazo" for one left unread.
std::vector<std::pair<int64_t, QString>> Lee(LectorDeReporte&& lector) {
    std::vector<std::pair<int64_t, QString>> r;
    LectorDeReporte::Renglon renglon;
    while (lector.Siguiente(renglon))
        r.emplace_back(renglon.row, renglon.rechazo.isEmpty() ? renglon.source : u"rechazo"_s);
    return r;
}

TEST(ArchivosHostiles, NadaSeEscribeJuntoAlArchivoAunqueSuRegistroSigaAbierto) {
    const QByteArray sql = "PRAGMA journal_mode = WAL; PRAGMA wal_autocheckpoint = 0; " + kSource +
                           Fila(1, "'IniciaDocumento'") + Fila(2, "'FinDocumento'");
    if (geteuid() == 0) std::cout << "[ aviso    ] como root la carpeta de solo lectura no ata: solo se compara\n";
    enum Estado { Completo, Grabandose, MuertoConIndice, MuertoSinIndice };
    for (const Estado estado : {Completo, Grabandose, MuertoConIndice, MuertoSinIndice}) {
        SCOPED_TRACE(estado);
        QTemporaryDir dir;
        const QString archivo = dir.filePath(u"x.rep"_s);
        sqlite3* abierta = Base(archivo, sql, estado != Grabandose, estado == Completo);
        if (estado == MuertoSinIndice) QFile::remove(archivo + u"-shm"_s);
        const QStringList antes = Huella(dir.path());
        ASSERT_EQ(antes.filter(u"x.rep-wal"_s).size(), estado == Completo ? 0 : 1);
        QFile::setPermissions(dir.path(), QFileDevice::ReadOwner | QFileDevice::ExeOwner);
        EXPECT_EQ(Lee(LectorDeReporte(archivo)).size(), 2u);
        QFile::setPermissions(dir.path(), QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        EXPECT_EQ(Huella(dir.path()), antes);
        sqlite3_close(abierta);
    }
}

TEST(ArchivosHostiles, LoQueEjecutariaSqlOEstaDanadoSeRechazaConSuMotivo) {
    QTemporaryDir dir;
    QByteArray muchas = kSource + "BEGIN;";
    for (int i = 1; i <= 2000; ++i) muchas += Fila(i, "'PaginaNueva'");
    const std::pair<QByteArray, const char16_t*> casos[] = {
        {"CREATE VIEW source( pagina, source, row, contenido, fuente, fsize, nrow, ncol, bold, italic ) AS "
         "WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c) "
         "SELECT 1, randomblob(1000000), x, '', '', 0, 0, 0, 0, 0 FROM c;",
         u"contiene la vista «source»"},
        {kSource +
             "CREATE TABLE header( paginas ); CREATE TRIGGER t AFTER INSERT ON header BEGIN DELETE FROM source; END;",
         u"contiene el disparador «t»"},
        {"CREATE VIRTUAL TABLE source USING fts4( pagina, texto, row );", u"contiene la tabla virtual «source»"},
        {"CREATE TABLE header( paginas INTEGER );", u"no es un archivo de reporte (le falta la tabla source)"},
        {"CREATE TABLE source( pagina, source, row, x AS (length(source)) );", u"no tiene las columnas del componente"},
        {muchas + "COMMIT;", u"está dañado"},  // once its table's pages are scribbled over
    };
    int n = 0;
    for (const auto& [sql, motivo] : casos) {
        const QString archivo = dir.filePath(u"%1.rep"_s.arg(++n));
        Base(archivo, sql);
        if (sql.startsWith(muchas)) {
            QFile f(archivo);
            ASSERT_TRUE(f.open(QIODevice::ReadWrite) && f.seek(3 * 4096) && f.write(QByteArray(300, 'Z')) == 300);
        }
        const QStringList antes = Huella(dir.path());
        QString descripcion;
        EXPECT_EQ(NumeroDeError([&] { LectorDeReporte l(archivo); }, &descripcion), err::kErrorDeBaseDeDatos);
        EXPECT_TRUE(descripcion.startsWith(u"El archivo "_s + archivo + u' ')) << descripcion.toStdString();
        EXPECT_TRUE(descripcion.contains(QString::fromUtf16(motivo))) << descripcion.toStdString();
        EXPECT_EQ(Huella(dir.path()), antes);
    }
}

// Not a database at all, or no file: named in the error, and nothing created.
TEST(ArchivosHostiles, LoQueNoEsUnaBaseDeDatosONoEstaSeNombra) {
    QTemporaryDir dir;
    const std::tuple<QString, int32_t, const char16_t*> casos[] = {
        {Escribe(dir.filePath(u"basura.rep"_s), "SQLite en otro formato"), err::kErrorDeBaseDeDatos,
         u"no es un archivo de reporte"},
        {dir.filePath(u"no_existe.rep"_s), err::kArchivoNoEncontrado, u"No se encuentra"},
    };
    for (const auto& [archivo, numero, motivo] : casos) {
        QString descripcion;
        EXPECT_EQ(NumeroDeError([&] { LectorDeReporte l(archivo); }, &descripcion), numero);
        EXPECT_TRUE(descripcion.contains(QString::fromUtf16(motivo)) && descripcion.contains(archivo))
            << descripcion.toStdString();
    }
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{u"basura.rep"_s});
}

TEST(ArchivosHostiles, RenglonesGrandesRepetidosOFueraDeOrdenSeLeenPorNumero) {
    QTemporaryDir dir;
    const std::tuple<std::vector<int>, int64_t, int64_t> casos[] = {
        // row numbers as recorded, repeated, out of order
        {{1, 2, 3, 4}, 0, 0},
        {{1, 2, 4, 3, 1, 2, 3, 4}, 4, 4},
    };
    for (const auto& [orden, repetidos, fueraDeOrden] : casos) {
        QByteArray sql = kSource;
        for (int row : orden) {
            // Rows 2 and 3 each hold a value too big to load.
            const QByteArray texto = "'CurrentX Fn(\"" + QByteArray::number(row) + "\")'";
            sql += row == 2   ? Fila(row, texto, "printf('%.*c', 100000, 'x')")
                   : row == 3 ? Fila(row, "printf('%.*c', 70000, 'y')")
                              : Fila(row, texto);
        }
        const QString archivo = dir.filePath(u"%1.rep"_s.arg(orden.size() * 10 + orden[0]));
        Base(archivo, sql);
        LectorDeReporte lector(archivo);
        EXPECT_EQ(lector.Repetidos(), repetidos);
        EXPECT_EQ(lector.FueraDeOrden(), fueraDeOrden);
        std::vector<std::pair<int64_t, QString>> esperados;
        for (int row : orden)
            esperados.emplace_back(row, row == 2 || row == 3 ? u"rechazo"_s : u"CurrentX Fn(\"%1\")"_s.arg(row));
        std::stable_sort(esperados.begin(), esperados.end(), [](auto& a, auto& b) { return a.first < b.first; });
        EXPECT_EQ(Lee(std::move(lector)), esperados);
    }
}

TEST(ArchivosHostiles, UnaConsultaQueSePasaDeTrabajoOPideFuncionesSeAbandona) {
    QTemporaryDir dir;
    QByteArray sql = kSource + "BEGIN;";
    for (int i = 1; i <= 300; ++i) sql += Fila(i, "'PaginaNueva'");
    Base(dir.filePath(u"x.rep"_s), sql + "COMMIT;");
    BaseDeLectura base(dir.filePath(u"x.rep"_s));
    // 27 million combinations and no row returned: only the work bound stops it.
    for (const auto& [consulta, motivo] :
         {std::pair{"SELECT 1 FROM source a, source b, source c WHERE a.row + b.row + c.row < 0", u"se abandonó"},
          std::pair{"SELECT randomblob(1000000000)", u"no es un archivo de reporte"}}) {
        QString descripcion;
        EXPECT_EQ(NumeroDeError([&] { base.Paso(base.Prepara(consulta).get()); }, &descripcion),
                  err::kErrorDeBaseDeDatos);
        EXPECT_TRUE(descripcion.contains(QString::fromUtf16(motivo))) << descripcion.toStdString();
    }
}

}  // namespace
