// Spool files and scripts made by a hostile sender: each is read or refused
// with a message, quickly, and nothing appears or changes beside it.

#include <sqlite3.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "comun/utilerias_de_prueba.h"
#include "spool/guion.h"
#include "spool/reproduccion.h"

using namespace kalo;
using namespace Qt::StringLiterals;
using kalo::prueba::Escribe;
using kalo::prueba::NumeroDeError;

namespace {

const QByteArray kSource =
    "CREATE TABLE source( pagina INTEGER, source TEXT, row INTEGER, contenido TEXT, fuente TEXT, fsize REAL, "
    "nrow REAL, ncol REAL, bold INTEGER, italic INTEGER )";

QByteArray Fila(int row, const QByteArray& source, const QByteArray& contenido = "''") {
    return "INSERT INTO source( pagina, row, source, contenido ) VALUES ( 1, " + QByteArray::number(row) + ", " +
           source + ", " + contenido + " )";
}

// Statements run on a connection that stays open (a recorder still at work)
// unless cerrar; a closed one may leave its log beside the file unfolded.
sqlite3* Base(const QString& ruta, const std::vector<QByteArray>& sql, bool cerrar = true, bool consolidar = true) {
    sqlite3* bd = nullptr;
    EXPECT_EQ(sqlite3_open(ruta.toUtf8().constData(), &bd), SQLITE_OK);
    if (!consolidar) sqlite3_db_config(bd, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    sqlite3_exec(bd, "PRAGMA synchronous = OFF", nullptr, nullptr, nullptr);
    for (const QByteArray& s : sql) {
        char* error = nullptr;
        EXPECT_EQ(sqlite3_exec(bd, s.constData(), nullptr, nullptr, &error), SQLITE_OK) << s.left(200).constData() << ": " << (error ? error : "");
        sqlite3_free(error);
    }
    if (!cerrar) return bd;
    sqlite3_close(bd);
    return nullptr;
}

// What a folder holds, file by file, to tell that nothing was written there.
std::string Huella(const QString& carpeta) {
    std::string h;
    for (const QString& n : QDir(carpeta).entryList(QDir::Files | QDir::Hidden)) {
        QFile f(QDir(carpeta).filePath(n));
        EXPECT_TRUE(f.open(QIODevice::ReadOnly));
        h += n.toStdString() + ' ' + QCryptographicHash::hash(f.readAll(), QCryptographicHash::Sha1).toHex().left(12).toStdString() + '\n';
    }
    return h;
}

// Every row read: its number and its text, or "rechazo" for one left unread.
std::vector<std::pair<int64_t, QString>> Lee(const QString& archivo) {
    std::vector<std::pair<int64_t, QString>> r;
    LectorDeReporte lector(archivo);
    LectorDeReporte::Renglon renglon;
    while (lector.Siguiente(renglon))
        r.emplace_back(renglon.row, renglon.rechazo.isEmpty() ? renglon.source : u"rechazo"_s);
    return r;
}

// A folder nobody may write into, for the life of the object. Root writes
// anyway: then only the listing before and after tells.
class CarpetaDeSoloLectura {
public:
    explicit CarpetaDeSoloLectura(const QString& carpeta) : carpeta_(carpeta) {
        QFile::setPermissions(carpeta_, QFileDevice::ReadOwner | QFileDevice::ExeOwner);
        if (geteuid() == 0)
            std::cout << "[ aviso    ] como root los permisos no cuentan: se comprueba solo que nada cambie\n";
    }
    ~CarpetaDeSoloLectura() {
        QFile::setPermissions(carpeta_, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    }

private:
    QString carpeta_;
};

TEST(ArchivosHostiles, NadaSeEscribeJuntoAlArchivoNiSiguenAbiertosSusRegistros) {
    const std::vector<QByteArray> filas = {"PRAGMA journal_mode=WAL", "PRAGMA wal_autocheckpoint=0", kSource,
                                           Fila(1, "'IniciaDocumento'"), Fila(2, "'PaginaNueva'"),
                                           Fila(3, "'FinDocumento'")};
    enum class Estado { Completo, GrabandoseAun, MuertoConIndice, MuertoSinIndice };
    for (const Estado estado : {Estado::Completo, Estado::GrabandoseAun, Estado::MuertoConIndice, Estado::MuertoSinIndice}) {
        SCOPED_TRACE(static_cast<int>(estado));
        QTemporaryDir dir;
        const QString archivo = dir.filePath(u"x.rep"_s);
        sqlite3* abierta = Base(archivo, filas, estado != Estado::GrabandoseAun, estado == Estado::Completo);
        if (estado == Estado::MuertoSinIndice) QFile::remove(archivo + u"-shm"_s);
        const auto antes = Huella(dir.path());
        ASSERT_EQ(antes.find("x.rep-wal") != std::string::npos, estado != Estado::Completo);
        {
            const CarpetaDeSoloLectura candado(dir.path());
            const auto renglones = Lee(archivo);
            ASSERT_EQ(renglones.size(), 3u);
            EXPECT_EQ(renglones[2].second, u"FinDocumento"_s);
        }
        EXPECT_EQ(Huella(dir.path()), antes);
        sqlite3_close(abierta);
    }
}

TEST(ArchivosHostiles, LoQueEjecutariaSqlOEstaDanadoSeRechazaConSuMotivo) {
    QTemporaryDir dir;
    const QByteArray recursiva =
        "CREATE VIEW source( pagina, source, row, contenido, fuente, fsize, nrow, ncol, bold, italic ) AS "
        "WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c) "
        "SELECT 1, randomblob(1000000), x, '', '', 0, 0, 0, 0, 0 FROM c";
    std::vector<QByteArray> muchas = {kSource, "BEGIN"};
    for (int i = 1; i <= 2000; ++i) muchas.push_back(Fila(i, "'CurrentX Fn(\"1\")'"));
    muchas.push_back("COMMIT");
    struct Caso {
        const char* nombre;
        std::vector<QByteArray> sql;
        const char16_t* motivo;
    } casos[] = {
        {"vista.rep", {recursiva}, u"contiene la vista «source»"},
        {"disparador.rep",
         {kSource, "CREATE TABLE header( paginas INTEGER )",
          "CREATE TRIGGER t AFTER INSERT ON header BEGIN DELETE FROM source; END"},
         u"contiene el disparador «t»"},
        {"virtual.rep", {"CREATE VIRTUAL TABLE source USING fts4( pagina, texto, row )"}, u"tabla virtual «source»"},
        {"cabecera.rep", {kSource, "CREATE VIEW header( paginas ) AS SELECT 1"}, u"contiene la vista «header»"},
        {"columnas.rep", {"CREATE TABLE source( pagina, source, row )"}, u"no tiene las columnas del componente"},
        {"calculada.rep",
         {"CREATE TABLE source( pagina INTEGER, source TEXT, row INTEGER, contenido TEXT, fuente TEXT, fsize REAL, "
          "nrow REAL, ncol REAL, bold INTEGER, italic INTEGER, x AS (length(source)) )"},
         u"no tiene las columnas del componente"},
        {"sin_rowid.rep", {kSource.chopped(1) + ", PRIMARY KEY(row) ) WITHOUT ROWID"}, u"no es un archivo de reporte"},
        {"esquema_largo.rep",
         {kSource, "CREATE TABLE otra( x DEFAULT '" + QByteArray(70000, 'x') + "' )"},
         u"tiene un valor de más de 64 KiB"},
        {"danado.rep", muchas, u"está dañado"},
    };
    for (const Caso& c : casos) {
        SCOPED_TRACE(c.nombre);
        const QString archivo = dir.filePath(QString::fromLatin1(c.nombre));
        Base(archivo, c.sql);
        if (QByteArray(c.nombre) == "danado.rep") {
            QFile f(archivo);
            ASSERT_TRUE(f.open(QIODevice::ReadWrite));
            f.seek(3 * 4096);
            f.write(QByteArray(300, 'Z'));  // a page of the table, scribbled over
        }
        const auto antes = Huella(dir.path());
        QString descripcion;
        EXPECT_EQ(NumeroDeError([&] { Lee(archivo); }, descripcion), err::kErrorDeBaseDeDatos);
        EXPECT_TRUE(descripcion.contains(QString::fromUtf16(c.motivo))) << descripcion.toStdString();
        EXPECT_TRUE(descripcion.startsWith(u"El archivo "_s + archivo)) << descripcion.toStdString();
        EXPECT_EQ(Huella(dir.path()), antes);
    }
}

TEST(ArchivosHostiles, RenglonesGrandesRepetidosOFueraDeOrdenSeLeenPorNumero) {
    QTemporaryDir dir;
    struct Caso {
        std::vector<int> orden;  // row numbers in the order they were recorded
        int64_t repetidos, fueraDeOrden;
    } casos[] = {
        {{1, 2, 3, 4}, 0, 0},
        {{4, 3, 2, 1}, 0, 3},
        {{1, 3, 2, 4}, 0, 1},
        {{1, 2, 3, 4, 1, 2, 3, 4}, 4, 3},
    };
    int n = 0;
    for (const Caso& c : casos) {
        SCOPED_TRACE(n);
        std::vector<QByteArray> sql = {kSource};
        for (int row : c.orden) {
            // Rows 2 and 3 hold a value too big to load, in either column.
            const QByteArray texto = "'CurrentX Fn(\"" + QByteArray::number(row) + "\")'";
            if (row == 2)
                sql.push_back(Fila(row, texto, "printf('%.*c', 100000, 'x')"));
            else if (row == 3)
                sql.push_back(Fila(row, "printf('%.*c', 70000, 'y')"));
            else
                sql.push_back(Fila(row, texto));
        }
        const QString archivo = dir.filePath(u"orden-%1.rep"_s.arg(n++));
        Base(archivo, sql);
        LectorDeReporte lector(archivo);
        EXPECT_EQ(lector.Repetidos(), c.repetidos);
        EXPECT_EQ(lector.FueraDeOrden(), c.fueraDeOrden);
        std::vector<int64_t> leidos;
        LectorDeReporte::Renglon r;
        while (lector.Siguiente(r)) {
            leidos.push_back(r.row);
            if (r.row == 2 || r.row == 3) {
                EXPECT_TRUE(r.rechazo.contains(u"más de 64 KiB"_s)) << r.rechazo.toStdString();
                EXPECT_TRUE(r.source.isEmpty());
            } else {
                EXPECT_EQ(r.source, u"CurrentX Fn(\"%1\")"_s.arg(r.row));
            }
        }
        std::vector<int64_t> esperados(c.orden.begin(), c.orden.end());
        std::sort(esperados.begin(), esperados.end());
        EXPECT_EQ(leidos, esperados);
    }
}

TEST(ArchivosHostiles, UnaConsultaQueSePasaDeTrabajoOPideFuncionesSeAbandona) {
    QTemporaryDir dir;
    std::vector<QByteArray> sql = {kSource, "BEGIN"};
    for (int i = 1; i <= 300; ++i) sql.push_back(Fila(i, "'PaginaNueva'"));
    sql.push_back("COMMIT");
    const QString archivo = dir.filePath(u"x.rep"_s);
    Base(archivo, sql);
    BaseDeLectura base(archivo);
    struct Caso {
        const char* sql;
        const char16_t* motivo;
    } casos[] = {
        // 27 million combinations, none returned: only the work bound stops it.
        {"SELECT a.rowid FROM source a, source b, source c WHERE a.row + b.row + c.row < 0", u"se abandonó"},
        {"SELECT randomblob(100000000)", u"no es un archivo de reporte del componente"},
        {"WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c) SELECT x FROM c",
         u"no es un archivo de reporte del componente"},
        {"ATTACH DATABASE 'otra.rep' AS otra", u"no es un archivo de reporte del componente"},
    };
    for (const Caso& c : casos) {
        SCOPED_TRACE(c.sql);
        QString descripcion;
        EXPECT_EQ(NumeroDeError([&] { base.Paso(base.Prepara(c.sql).get()); }, descripcion),
                  err::kErrorDeBaseDeDatos);
        EXPECT_TRUE(descripcion.contains(QString::fromUtf16(c.motivo))) << descripcion.toStdString();
    }
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{u"x.rep"_s});
}

TEST(ArchivosHostiles, LineasLargasYMensajesSinFinSeCuentanSinGuardarse) {
    QTemporaryDir dir;
    QByteArray guion = "IniciaDocumento\nPicture \"" + QByteArray(100000, ',').replace(',', "\",") + "\n";
    guion += "Say Fn(\"1\"),Fn(\"1\"),\"" + QByteArray(200000, 'x') + "\"\nPaginaNueva\n";
    for (int i = 0; i < 1000; ++i) guion += "BorraArchivo\nEstableceFuente \"F" + QByteArray::number(i) + "\",Fn(\"10\")\n";
    guion += "FinDocumento";  // the last line without its line break
    const ResumenDeGuion r = Resume(*AbreGuion(Escribe(dir.filePath(u"largo.txt"_s), guion)));
    EXPECT_EQ(r.paginasPorDocumento, std::vector<int>{2});
    EXPECT_EQ(r.comandos, 1003);
    EXPECT_EQ(r.totalMalFormadas, 1002);
    ASSERT_EQ(r.malFormadas.size(), static_cast<size_t>(limite::kMensajes));
    EXPECT_EQ(r.malFormadas[0].renglon, 2);
    EXPECT_TRUE(r.malFormadas[0].mensaje.contains(u"más de 64 KiB"_s)) << r.malFormadas[0].mensaje.toStdString();
    EXPECT_EQ(r.malFormadas[1].renglon, 3);
    EXPECT_TRUE(r.malFormadas[2].mensaje.contains(u"no permitido"_s));
    EXPECT_EQ(r.fuentes.size(), static_cast<size_t>(limite::kMensajes));
    EXPECT_TRUE(r.masFuentes);

    // Below the limit a line full of would-be closing quotes is still parsed
    // through; the parser's time is measured in bench/banco_guion.cpp.
    QString error;
    const QString casi = u"Picture \""_s + u"\","_s.repeated(30000);
    EXPECT_FALSE(LeeComando(casi, &error));
    EXPECT_TRUE(error.contains(u"debe ser un número Fn"_s)) << error.toStdString();
}

}  // namespace
