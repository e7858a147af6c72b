// Reading spool files from anywhere: the read-only file layer, the defences
// of the connection, the schema check and the row reader.

#include "spool/lector.h"

#include <sqlite3.h>

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cstring>

#include "kaloimpresora/errores.h"

namespace kalo {

using namespace Qt::StringLiterals;

namespace {

// ---- A file layer that only reads -------------------------------------------
//
// It wraps the system's layer and opens the file and its write-ahead log and
// nothing else (no journal, no temporary file, no shared-memory index), never
// for writing; writes, truncations and deletions are refused. No locks are
// taken: nothing is written, and a file still being recorded is read as it
// stands. Without shared memory SQLite keeps the log's index in the
// connection's own memory, which it does in exclusive locking mode.

constexpr const char* kNombreDeCapa = "kalo-solo-lectura";

struct ArchivoDeLectura {
    sqlite3_file base;
    sqlite3_file* real;  // nullptr: a log that is not there, read as empty
};
constexpr int kDesplazamiento = (sizeof(ArchivoDeLectura) + 15) & ~15;

sqlite3_file* Real(sqlite3_file* f) { return reinterpret_cast<ArchivoDeLectura*>(f)->real; }

int Cierra(sqlite3_file* f) {
    sqlite3_file* real = Real(f);
    return real ? real->pMethods->xClose(real) : SQLITE_OK;
}

int Lee(sqlite3_file* f, void* destino, int bytes, sqlite3_int64 desde) {
    if (sqlite3_file* real = Real(f)) return real->pMethods->xRead(real, destino, bytes, desde);
    std::memset(destino, 0, static_cast<size_t>(bytes));
    return SQLITE_IOERR_SHORT_READ;
}

int Escribe(sqlite3_file*, const void*, int, sqlite3_int64) { return SQLITE_READONLY; }
int Trunca(sqlite3_file*, sqlite3_int64) { return SQLITE_READONLY; }
int Sincroniza(sqlite3_file*, int) { return SQLITE_OK; }

int Tamano(sqlite3_file* f, sqlite3_int64* tamano) {
    if (sqlite3_file* real = Real(f)) return real->pMethods->xFileSize(real, tamano);
    *tamano = 0;
    return SQLITE_OK;
}

int SinCerrojo(sqlite3_file*, int) { return SQLITE_OK; }
int NadieReserva(sqlite3_file*, int* reservado) {
    *reservado = 0;
    return SQLITE_OK;
}
int SinControles(sqlite3_file*, int, void*) { return SQLITE_NOTFOUND; }
int Sector(sqlite3_file*) { return 4096; }
int Caracteristicas(sqlite3_file*) { return 0; }

// Version 1: no shared memory, no mapping of the file.
const sqlite3_io_methods kMetodos = {
    .iVersion = 1,
    .xClose = Cierra,
    .xRead = Lee,
    .xWrite = Escribe,
    .xTruncate = Trunca,
    .xSync = Sincroniza,
    .xFileSize = Tamano,
    .xLock = SinCerrojo,
    .xUnlock = SinCerrojo,
    .xCheckReservedLock = NadieReserva,
    .xFileControl = SinControles,
    .xSectorSize = Sector,
    .xDeviceCharacteristics = Caracteristicas,
    .xShmMap = nullptr,
    .xShmLock = nullptr,
    .xShmBarrier = nullptr,
    .xShmUnmap = nullptr,
    .xFetch = nullptr,
    .xUnfetch = nullptr,
};

sqlite3_vfs* Sistema(sqlite3_vfs* capa) { return static_cast<sqlite3_vfs*>(capa->pAppData); }

int Abre(sqlite3_vfs* capa, sqlite3_filename nombre, sqlite3_file* f, int banderas, int* salida) {
    auto* archivo = reinterpret_cast<ArchivoDeLectura*>(f);
    archivo->base.pMethods = nullptr;
    archivo->real = nullptr;
    const bool esLog = banderas & SQLITE_OPEN_WAL;
    if (!nombre || !(esLog || (banderas & SQLITE_OPEN_MAIN_DB))) return SQLITE_CANTOPEN;
    const int soloLectura =
        (banderas & ~(SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_EXCLUSIVE | SQLITE_OPEN_DELETEONCLOSE)) |
        SQLITE_OPEN_READONLY;
    sqlite3_vfs* sistema = Sistema(capa);
    auto* real = reinterpret_cast<sqlite3_file*>(reinterpret_cast<char*>(f) + kDesplazamiento);
    real->pMethods = nullptr;
    const int rc = sistema->xOpen(sistema, nombre, real, soloLectura, salida);
    if (rc == SQLITE_OK) {
        archivo->real = real;
    } else {
        if (real->pMethods) real->pMethods->xClose(real);
        // A log that is not there is an empty one; one there but unreadable is not.
        int existe = 1;
        if (!esLog || sistema->xAccess(sistema, nombre, SQLITE_ACCESS_EXISTS, &existe) != SQLITE_OK || existe)
            return rc;
        if (salida) *salida = soloLectura;
    }
    archivo->base.pMethods = &kMetodos;
    return SQLITE_OK;
}

int Borra(sqlite3_vfs*, const char*, int) { return SQLITE_IOERR_DELETE; }

int Accede(sqlite3_vfs* capa, const char* nombre, int que, int* resultado) {
    // A journal left beside the file would be rolled back, which writes: the
    // file is read as it stands.
    const size_t largo = std::strlen(nombre);
    if (largo >= 8 && std::strcmp(nombre + largo - 8, "-journal") == 0) {
        *resultado = 0;
        return SQLITE_OK;
    }
    return Sistema(capa)->xAccess(Sistema(capa), nombre, que, resultado);
}

int RutaCompleta(sqlite3_vfs* capa, const char* nombre, int largo, char* salida) {
    return Sistema(capa)->xFullPathname(Sistema(capa), nombre, largo, salida);
}

const char* CapaDeSoloLectura() {
    static sqlite3_vfs capa = [] {
        sqlite3_vfs* sistema = sqlite3_vfs_find(nullptr);
        sqlite3_vfs c = *sistema;
        c.iVersion = 1;
        c.szOsFile = kDesplazamiento + sistema->szOsFile;
        c.pNext = nullptr;
        c.zName = kNombreDeCapa;
        c.pAppData = sistema;
        c.xOpen = Abre;
        c.xDelete = Borra;
        c.xAccess = Accede;
        c.xFullPathname = RutaCompleta;
        return c;
    }();
    static const int registrada = sqlite3_vfs_register(&capa, 0);
    return registrada == SQLITE_OK ? capa.zName : nullptr;
}

// ---- The connection's defences ----------------------------------------------

constexpr int kInstruccionesPorAviso = 1000;

constexpr std::pair<int, int> kLimites[] = {
    {SQLITE_LIMIT_LENGTH, static_cast<int>(limite::kComando) + 2},  // a command and its CR LF
    {SQLITE_LIMIT_SQL_LENGTH, 64 * 1024},                           // the schema's statements too
    {SQLITE_LIMIT_COLUMN, 100},
    {SQLITE_LIMIT_EXPR_DEPTH, 64},
    {SQLITE_LIMIT_COMPOUND_SELECT, 4},
    {SQLITE_LIMIT_VDBE_OP, 100'000},
    {SQLITE_LIMIT_FUNCTION_ARG, 8},
    {SQLITE_LIMIT_ATTACHED, 0},
    {SQLITE_LIMIT_LIKE_PATTERN_LENGTH, 64},
    {SQLITE_LIMIT_VARIABLE_NUMBER, 4},
    {SQLITE_LIMIT_TRIGGER_DEPTH, 1},
    {SQLITE_LIMIT_WORKER_THREADS, 0},
};

// Our statements only read: tables, the schema, typeof() and table_xinfo.
int Autoriza(void*, int accion, const char* primero, const char* segundo, const char*, const char*) {
    switch (accion) {
    case SQLITE_SELECT:
    case SQLITE_READ: return SQLITE_OK;
    case SQLITE_FUNCTION: return segundo && std::strcmp(segundo, "typeof") == 0 ? SQLITE_OK : SQLITE_DENY;
    case SQLITE_PRAGMA: return primero && std::strcmp(primero, "table_xinfo") == 0 ? SQLITE_OK : SQLITE_DENY;
    default: return SQLITE_DENY;
    }
}

QString Motivo(int codigo) {
    switch (codigo & 0xFF) {
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_FORMAT: return u"está dañado"_s;
    case SQLITE_INTERRUPT:
        return u"pide más trabajo del que se permite a una consulta (%1 instrucciones); se abandonó"_s.arg(
            limite::kPasosDeConsulta);
    case SQLITE_TOOBIG: return u"tiene un valor de más de %1 KiB"_s.arg(limite::kComando / 1024);
    case SQLITE_NOMEM: return u"no cabe en la memoria"_s;
    case SQLITE_CANTOPEN: return u"no se puede abrir"_s;
    case SQLITE_IOERR: return u"no se puede leer (error de lectura)"_s;
    case SQLITE_AUTH:
    case SQLITE_ERROR: return u"no es un archivo de reporte del componente"_s;
    default: return u"no se puede leer (error %1 de SQLite)"_s.arg(codigo);
    }
}

QString Texto(sqlite3_stmt* s, int columna) {
    const auto* t = reinterpret_cast<const char*>(sqlite3_column_text(s, columna));
    return t ? QString::fromUtf8(t, sqlite3_column_bytes(s, columna)) : QString();
}

// A name from the file, short enough for a message.
QString Nombre(const QString& nombre) { return u'«' + (nombre.size() > 80 ? nombre.left(80) + u'…' : nombre) + u'»'; }

// `row` as a whole number, read without loading anything that is not one.
#define KALO_ROW "CASE WHEN typeof(row) IN ('integer', 'real') THEN CAST(row AS INTEGER) END"

}  // namespace

void BaseDeLectura::CierraBase::operator()(sqlite3* bd) const { sqlite3_close_v2(bd); }
void BaseDeLectura::Finaliza::operator()(sqlite3_stmt* s) const { sqlite3_finalize(s); }

BaseDeLectura::BaseDeLectura(const QString& archivo) : archivo_(archivo) {
    const QFileInfo info(archivo);
    if (!info.isFile())
        throw ErrorDeAutomatizacion(err::kArchivoNoEncontrado, u"No se encuentra el archivo de reporte: "_s + archivo,
                                    u"LectorDeReporte"_s);
    {
        QFile f(archivo);
        if (!f.open(QIODevice::ReadOnly))
            throw ErrorDeAutomatizacion(err::kAccesoARutaOArchivo, u"No se puede leer el archivo "_s + archivo,
                                        u"LectorDeReporte"_s);
        static const QByteArray kFirma("SQLite format 3\0", 16);
        if (f.read(kFirma.size()) != kFirma) Falla(u"no es un archivo de reporte"_s);
    }
    // An absolute path is never taken for a URI, whose options could undo all this.
    const char* capa = CapaDeSoloLectura();
    if (!capa) Falla(SQLITE_CANTOPEN);
    sqlite3* bd = nullptr;
    const int rc = sqlite3_open_v2(info.absoluteFilePath().toUtf8().constData(), &bd,
                                   SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX, capa);
    bd_.reset(bd);
    if (rc != SQLITE_OK) Falla(rc);
    sqlite3_extended_result_codes(bd, 1);
    for (const auto& [cual, valor] : kLimites) sqlite3_limit(bd, cual, valor);
    sqlite3_db_config(bd, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(bd, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(bd, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(bd, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    sqlite3_db_config(bd, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0, nullptr);
    sqlite3_progress_handler(bd, kInstruccionesPorAviso, &BaseDeLectura::Avisa, this);
    // Exclusive mode lets the log's index live in memory (the layer has no
    // shared memory). Temporary storage is what fits in the page cache: the
    // layer refuses the temporary file it would spill into.
    avisos_ = 0;
    const int pragmas = sqlite3_exec(bd,
                                     "PRAGMA locking_mode = EXCLUSIVE; PRAGMA query_only = 1; "
                                     "PRAGMA cell_size_check = 1; PRAGMA temp_store = FILE; PRAGMA cache_size = -256",
                                     nullptr, nullptr, nullptr);
    if (pragmas != SQLITE_OK) Falla(pragmas);
    sqlite3_set_authorizer(bd, &Autoriza, nullptr);
}

BaseDeLectura::~BaseDeLectura() = default;

int BaseDeLectura::Avisa(void* yo) {
    auto* base = static_cast<BaseDeLectura*>(yo);
    return ++base->avisos_ > limite::kPasosDeConsulta / kInstruccionesPorAviso;
}

BaseDeLectura::Sentencia BaseDeLectura::Prepara(const char* sql) {
    avisos_ = 0;
    sqlite3_stmt* s = nullptr;
    const int rc = sqlite3_prepare_v2(bd_.get(), sql, -1, &s, nullptr);
    Sentencia sentencia(s);
    if (rc != SQLITE_OK) Falla(rc);
    return sentencia;
}

int BaseDeLectura::Paso(sqlite3_stmt* sentencia) {
    avisos_ = 0;
    const int rc = sqlite3_step(sentencia);
    if (rc == SQLITE_ROW || rc == SQLITE_DONE || rc == SQLITE_TOOBIG) return rc;
    Falla(rc);
}

void BaseDeLectura::Falla(const QString& que) const {
    throw ErrorDeAutomatizacion(err::kErrorDeBaseDeDatos, u"El archivo "_s + archivo_ + u' ' + que,
                                u"LectorDeReporte"_s);
}

void BaseDeLectura::Falla(int codigo) const { Falla(Motivo(codigo)); }

// ---- The reader ---------------------------------------------------------------

LectorDeReporte::LectorDeReporte(const QString& archivo) : base_(archivo) {
    CompruebaEsquema();
    Examina();
}

LectorDeReporte::~LectorDeReporte() = default;

void LectorDeReporte::CompruebaEsquema() {
    bool source = false, header = false;
    const auto s = base_.Prepara("SELECT type, name, sql FROM sqlite_schema");
    for (int rc; (rc = base_.Paso(s.get())) != SQLITE_DONE;) {
        if (rc == SQLITE_TOOBIG) base_.Falla(rc);
        const QString tipo = Texto(s.get(), 0), nombre = Texto(s.get(), 1);
        // Such SQL would run as the file is read; a spool file has none.
        auto rehusa = [&](const char16_t* cual, const char16_t* cuales) {
            base_.Falla(u"no se lee: contiene %1 %2, y un archivo de reporte no tiene %3"_s.arg(
                QString::fromUtf16(cual), Nombre(nombre), QString::fromUtf16(cuales)));
        };
        if (tipo == u"view") rehusa(u"la vista", u"vistas");
        if (tipo == u"trigger") rehusa(u"el disparador", u"disparadores");
        if (tipo != u"table") continue;
        if (Texto(s.get(), 2).simplified().startsWith(u"CREATE VIRTUAL TABLE"_s, Qt::CaseInsensitive))
            rehusa(u"la tabla virtual", u"tablas virtuales");
        source |= nombre.compare(u"source"_s, Qt::CaseInsensitive) == 0;
        header |= nombre.compare(u"header"_s, Qt::CaseInsensitive) == 0;
    }
    if (!source) base_.Falla(u"no es un archivo de reporte (le falta la tabla source)"_s);
    CompruebaColumnas("source", {u"pagina"_s, u"source"_s, u"row"_s, u"contenido"_s, u"fuente"_s, u"fsize"_s, u"nrow"_s,
                                 u"ncol"_s, u"bold"_s, u"italic"_s});
    // A reader takes a missing header as one page; a header must still be the recorder's.
    if (header) CompruebaColumnas("header", {u"paginas"_s});
}

void LectorDeReporte::CompruebaColumnas(const char* tabla, std::vector<QString> esperadas) {
    const auto s = base_.Prepara((QByteArray("PRAGMA table_xinfo(") + tabla + ')').constData());
    std::vector<QString> halladas;
    bool calculadas = false;
    for (int rc; (rc = base_.Paso(s.get())) != SQLITE_DONE;) {
        if (rc == SQLITE_TOOBIG) base_.Falla(rc);
        halladas.push_back(Texto(s.get(), 1).toLower());
        calculadas |= sqlite3_column_int(s.get(), 6) != 0;  // hidden or generated
    }
    std::sort(halladas.begin(), halladas.end());
    std::sort(esperadas.begin(), esperadas.end());
    if (calculadas || halladas != esperadas)
        base_.Falla(u"no es un archivo de reporte: la tabla %1 no tiene las columnas del componente"_s.arg(
            QString::fromLatin1(tabla)));
}

// One pass over the row numbers alone: are they in recording order? If not,
// a second pass keeps (row, rowid) of each row to read them sorted.
void LectorDeReporte::Examina() {
    const char* kNumeros = "SELECT rowid, " KALO_ROW " FROM source NOT INDEXED ORDER BY rowid";
    {
        const auto s = base_.Prepara(kNumeros);
        bool primero = true;
        int64_t anterior = 0, mayor = 0;
        while (base_.Paso(s.get()) == SQLITE_ROW) {
            const int64_t row = sqlite3_column_int64(s.get(), 1);
            if (!primero) {
                enOrden_ &= row > anterior;
                fueraDeOrden_ += row < mayor;
            }
            mayor = primero ? row : std::max(mayor, row);
            anterior = row;
            primero = false;
        }
    }
    constexpr const char* kColumnas =
        "SELECT rowid, pagina, " KALO_ROW ", source, contenido, bold, italic FROM source NOT INDEXED ";
    if (enOrden_) {
        consulta_ = base_.Prepara((QByteArray(kColumnas) + "WHERE rowid >= ?1 ORDER BY rowid").constData());
        sqlite3_bind_int64(consulta_.get(), 1, proximo_);
        return;
    }
    const auto s = base_.Prepara(kNumeros);
    while (base_.Paso(s.get()) == SQLITE_ROW) {
        if (static_cast<int64_t>(orden_.size()) >= limite::kRenglonesAOrdenar)
            base_.Falla(u"tiene más de %1 renglones fuera de orden; no se lee"_s.arg(limite::kRenglonesAOrdenar));
        orden_.emplace_back(sqlite3_column_int64(s.get(), 1), sqlite3_column_int64(s.get(), 0));
    }
    std::sort(orden_.begin(), orden_.end());
    for (size_t i = 1; i < orden_.size(); ++i) repetidos_ += orden_[i].first == orden_[i - 1].first;
    consulta_ = base_.Prepara((QByteArray(kColumnas) + "WHERE rowid = ?1").constData());
}

void LectorDeReporte::Llena(Renglon& r) {
    sqlite3_stmt* s = consulta_.get();
    r.pagina = sqlite3_column_int64(s, 1);
    r.row = sqlite3_column_int64(s, 2);
    r.source = Texto(s, 3);
    r.contenido = Texto(s, 4);
    r.bold = sqlite3_column_int64(s, 5) != 0;
    r.italic = sqlite3_column_int64(s, 6) != 0;
    r.rechazo.clear();
}

// A row holding a value above the limit is never loaded: it is named by its
// number and skipped.
bool LectorDeReporte::Rechaza(Renglon& r, int64_t row) {
    r = {};
    r.row = row;
    r.rechazo = u"el renglón tiene un valor de más de %1 KiB; se omite"_s.arg(limite::kComando / 1024);
    return true;
}

bool LectorDeReporte::Siguiente(Renglon& renglon) {
    if (terminado_) return false;
    sqlite3_stmt* s = consulta_.get();
    if (!enOrden_) {
        for (; siguiente_ < orden_.size(); ++siguiente_) {
            const auto [row, rowid] = orden_[siguiente_];
            sqlite3_reset(s);
            sqlite3_bind_int64(s, 1, rowid);
            const int rc = base_.Paso(s);
            if (rc == SQLITE_DONE) continue;  // gone since the file was examined
            ++siguiente_;
            if (rc == SQLITE_TOOBIG) return Rechaza(renglon, row);
            Llena(renglon);
            return true;
        }
        terminado_ = true;
        return false;
    }
    const int rc = base_.Paso(s);
    if (rc == SQLITE_DONE) {
        terminado_ = true;
        return false;
    }
    if (rc == SQLITE_ROW) {
        Llena(renglon);
        const int64_t rowid = sqlite3_column_int64(s, 0);
        terminado_ = rowid == INT64_MAX;
        proximo_ = rowid + !terminado_;
        return true;
    }
    // Too big: find which row it was without loading it, and go on after it.
    const auto cual =
        base_.Prepara("SELECT rowid, " KALO_ROW " FROM source NOT INDEXED WHERE rowid >= ?1 ORDER BY rowid LIMIT 1");
    sqlite3_bind_int64(cual.get(), 1, proximo_);
    if (base_.Paso(cual.get()) != SQLITE_ROW) base_.Falla(SQLITE_CORRUPT);
    const int64_t rowid = sqlite3_column_int64(cual.get(), 0);
    terminado_ = rowid == INT64_MAX;
    proximo_ = rowid + !terminado_;
    sqlite3_reset(s);
    sqlite3_bind_int64(s, 1, proximo_);
    return Rechaza(renglon, sqlite3_column_int64(cual.get(), 1));
}

}  // namespace kalo
