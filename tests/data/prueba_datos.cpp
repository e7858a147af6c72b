// Connections and recordsets against real databases: an SQLite file and the
// run's private PostgreSQL server (servidor_postgres.h). The same cases run
// on both; each PostgreSQL test works in a schema of its own, so tests may
// run side by side.

#include "comun/prueba.h"

#include <QCoreApplication>
#include <atomic>

#include "data/cadena_de_conexion.h"
#include "data/conexion.h"
#include "data/servidor_postgres.h"

namespace {

enum class Motor { Sqlite, Postgres };
void PrintTo(Motor m, std::ostream* os) { *os << (m == Motor::Sqlite ? "SQLite" : "PostgreSQL"); }

// rs(indice): the field; its value through its default member.
Variant Valor(Objeto& rs, Variant indice) {
    Variant campo = rs.Invoca(kDispidValor, Llamada::Metodo, std::span<Variant>(&indice, 1));
    return campo.objeto()->Invoca(kDispidValor, Llamada::LeePropiedad, {});
}

// Every row left, each as its values' text ("Null" for Null), moving with MoveNext.
QStringList Filas(Objeto& rs) {
    QStringList filas;
    auto campos = rs.Lee(u"Fields"_s).objeto();
    const int32_t n = CLng(campos->Lee(u"Count"_s));
    while (!CBool(rs.Lee(u"EOF"_s))) {
        QStringList fila;
        for (int32_t i = 0; i < n; ++i) {
            const Variant v = Valor(rs, i);
            fila << (v.esNulo() ? u"Null"_s : CStr(v));
        }
        filas << fila.join(u'|');
        rs.Llama(u"MoveNext"_s);
    }
    return filas;
}

class Datos : public ::testing::TestWithParam<Motor> {
protected:
    void SetUp() override {
        if (GetParam() == Motor::Sqlite) {
            cadena_ = u"Data Source="_s + dir_.filePath(u"datos.db"_s);
            return;
        }
        const ServidorPostgres& servidor = Postgres();
        if (servidor.carpeta.isEmpty()) GTEST_SKIP() << servidor.motivo.toStdString();
        cadena_ = CadenaPostgres(servidor.carpeta);
        static std::atomic<int> ultimo{0};
        esquema_ = u"prueba_%1_%2"_s.arg(QCoreApplication::applicationPid()).arg(++ultimo);
        Conexion c;
        c.Open(cadena_);
        c.Execute(u"CREATE SCHEMA "_s + esquema_);
    }

    void TearDown() override {
        if (esquema_.isEmpty()) return;
        Conexion c;
        c.Open(cadena_);
        c.Execute(u"SET client_min_messages TO warning"_s);  // no notice for each table dropped
        c.Execute(u"DROP SCHEMA "_s + esquema_ + u" CASCADE"_s);
    }

    bool EsPostgres() const { return GetParam() == Motor::Postgres; }

    // An open connection that works in the test's own tables.
    std::shared_ptr<Conexion> Abre() {
        auto c = std::make_shared<Conexion>();
        c->Open(cadena_);
        if (!esquema_.isEmpty()) c->Execute(u"SET search_path TO "_s + esquema_);
        return c;
    }

    QTemporaryDir dir_;
    QString cadena_;
    QString esquema_;
};

// A query of n rows, 1 to n, that needs no table on either database.
QString Serie(int n, const QString& columna = u"i"_s) {
    return u"WITH RECURSIVE serie(%1) AS (SELECT 1 UNION ALL SELECT %1 + 1 FROM serie WHERE %1 < %2) "
           "SELECT %1 FROM serie"_s.arg(columna).arg(n);
}

TEST_P(Datos, AbreConSusPropiosDatosYCierra) {
    auto c = CreaObjeto(u"ADODB.Connection"_s);
    ASSERT_TRUE(dynamic_cast<Conexion*>(c.get()));
    EXPECT_TRUE(dynamic_cast<Conexion*>(CreaObjeto(u"KaloImpresora.Conexion"_s).get()));
    EXPECT_EQ(CLng(c->Lee(u"State"_s)), 0);
    Variant cadena(cadena_);  // the default member
    c->Invoca(kDispidValor, Llamada::AsignaValor, std::span<Variant>(&cadena, 1));
    // As a branch is opened: empty texts and -1 leave the object's own settings.
    c->Llama(u"Open"_s, {u""_s, u""_s, u""_s, -1});
    EXPECT_EQ(CLng(c->Lee(u"State"_s)), 1);
    EXPECT_EQ(CStr(c->Lee(u"ConnectionString"_s)), cadena_);

    EXPECT_EQ(NumeroDeError([&] { c->Llama(u"Open"_s); }), err::kObjetoAbierto);
    EXPECT_EQ(NumeroDeError([&] { c->Asigna(u"ConnectionString"_s, u"Data Source=otra.db"_s); }),
              err::kObjetoAbierto);

    c->Llama(u"Close"_s);
    EXPECT_EQ(CLng(c->Lee(u"State"_s)), 0);
    EXPECT_EQ(NumeroDeError([&] { c->Llama(u"Close"_s); }), err::kObjetoCerrado);
    EXPECT_EQ(NumeroDeError([&] { c->Llama(u"Execute"_s, {u"SELECT 1"_s}); }), err::kObjetoCerrado);
    c->Llama(u"Open"_s);  // and again
    // Closing the connection closes what is open on it.
    auto rs = dynamic_cast<Conexion&>(*c).Execute(Serie(1000));
    c->Llama(u"Close"_s);
    EXPECT_EQ(rs->State(), 0);
    EXPECT_EQ(NumeroDeError([&] { rs->MoveNext(); }), err::kObjetoCerrado);
}

TEST_P(Datos, RecorreHaciaAdelanteYMoveFirstVuelveAConsultar) {
    auto c = Abre();
    c->Execute(u"CREATE TABLE articulos (clave INTEGER, nombre VARCHAR(20))"_s);
    int32_t afectadas = 0;
    c->Execute(u"INSERT INTO articulos VALUES (1, 'lápiz'), (2, 'goma'), (3, 'regla')"_s, &afectadas);
    EXPECT_EQ(afectadas, 3);

    auto rs = c->Execute(u"SELECT clave, nombre FROM articulos ORDER BY clave"_s);
    EXPECT_FALSE(CBool(rs->Lee(u"BOF"_s)));
    EXPECT_EQ(CLng(rs->Lee(u"RecordCount"_s)), -1);  // streamed: unknown until the end
    // rs("nombre"), rs(0), rs.Fields(0) and Fields.Item by any letter case.
    EXPECT_EQ(CStr(Valor(*rs, u"NOMBRE"_s)), u"lápiz"_s);
    EXPECT_EQ(CLng(Valor(*rs, 0)), 1);
    auto campos = rs->Lee(u"Fields"_s).objeto();
    EXPECT_EQ(CLng(campos->Lee(u"Count"_s)), 2);
    auto nombre = campos->Llama(u"Item"_s, {u"Nombre"_s}).objeto();
    EXPECT_EQ(CStr(nombre->Lee(u"Name"_s)), u"nombre"_s);
    EXPECT_EQ(CStr(rs->Llama(u"Fields"_s, {1})), u"lápiz"_s);
    EXPECT_EQ(NumeroDeError([&] { Valor(*rs, u"precio"_s); }), err::kElementoNoEncontrado);
    EXPECT_EQ(NumeroDeError([&] { Valor(*rs, 2); }), err::kElementoNoEncontrado);

    // A field kept by the host follows the current row.
    rs->Llama(u"MoveNext"_s);
    EXPECT_EQ(CStr(nombre->Lee(u"Value"_s)), u"goma"_s);
    EXPECT_EQ(Filas(*rs), (QStringList{u"2|goma"_s, u"3|regla"_s}));
    EXPECT_TRUE(CBool(rs->Lee(u"EOF"_s)));
    EXPECT_EQ(NumeroDeError([&] { rs->Llama(u"MoveNext"_s); }), err::kSinRegistroActual);
    EXPECT_EQ(NumeroDeError([&] { nombre->Lee(u"Value"_s); }), err::kSinRegistroActual);

    c->Execute(u"INSERT INTO articulos VALUES (0, 'tijeras')"_s);
    rs->Llama(u"MoveFirst"_s);
    EXPECT_EQ(Filas(*rs), (QStringList{u"0|tijeras"_s, u"1|lápiz"_s, u"2|goma"_s, u"3|regla"_s}));

    rs->Llama(u"Close"_s);
    EXPECT_EQ(CLng(rs->Lee(u"State"_s)), 0);
    EXPECT_EQ(NumeroDeError([&] { rs->Lee(u"Fields"_s); }), err::kObjetoCerrado);

    auto vacio = c->Execute(u"SELECT clave, nombre FROM articulos WHERE clave > 10"_s);
    EXPECT_TRUE(CBool(vacio->Lee(u"BOF"_s)) && CBool(vacio->Lee(u"EOF"_s)));
    EXPECT_EQ(CLng(vacio->Fields()->Lee(u"Count"_s)), 2);

    // A statement without rows gives a closed recordset, and how many rows it touched.
    std::vector<Variant> args{u"UPDATE articulos SET nombre = 'x' WHERE clave < 2"_s, Variant()};
    auto sinFilas = c->InvocaPorNombre(u"Execute"_s, Llamada::Metodo, args).objeto();
    EXPECT_EQ(CLng(sinFilas->Lee(u"State"_s)), 0);
    EXPECT_EQ(CLng(args[1]), 2);
}

TEST_P(Datos, CadaTipoDeColumnaTieneSuTipoDeAutomatizacion) {
    auto c = Abre();
    c->Execute(u"CREATE TABLE tipos (chico SMALLINT, entero INTEGER, grande BIGINT, corto BIGINT, "
               "doble DOUBLE PRECISION, importe NUMERIC(12,2), fino NUMERIC(20,6), dia DATE, "
               "momento TIMESTAMP, activo BOOLEAN, nombre VARCHAR(20))"_s);
    c->Execute(u"INSERT INTO tipos VALUES (-2, 40000, 5000000000, 7, 2.25, 1234.56, 1.123456, '2024-03-01', "
               "'2024-03-01 13:45:10', TRUE, 'ñandú')"_s);
    c->Execute(u"INSERT INTO tipos VALUES (NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL, NULL)"_s);

    struct Caso {
        const char16_t* columna;
        Variant esperado;
        int32_t tipoDeCampo;
    };
    const Caso casos[] = {
        {u"chico", Variant(int16_t{-2}), 2},
        {u"entero", Variant(int32_t{40000}), 3},
        {u"grande", Variant(5000000000.0), 20},  // past 32 bits: Double
        {u"corto", Variant(int32_t{7}), 20},
        {u"doble", Variant(2.25), 5},
        {u"importe", Variant(Moneda{12345600}), 6},
        {u"fino", Variant(1.123456), 131},
        {u"dia", Variant::Fecha(45352), 133},
        {u"momento", Variant::Fecha(45352 + (13 * 3600 + 45 * 60 + 10) / 86400.0), 135},
        {u"activo", Variant(true), 11},
        {u"nombre", Variant(u"ñandú"_s), 202},
    };
    auto rs = c->Execute(u"SELECT * FROM tipos"_s);
    for (const Caso& caso : casos) {
        const QString columna = QString::fromUtf16(caso.columna);
        const Variant v = Valor(*rs, columna);
        EXPECT_TRUE(v.identico(caso.esperado))
            << columna.toStdString() << ": tipo " << int(v.tipo()) << " " << CStr(v).toStdString();
        EXPECT_EQ(CLng(rs->Field(columna)->Lee(u"Type"_s)), caso.tipoDeCampo) << columna.toStdString();
    }
    rs->MoveNext();
    for (const Caso& caso : casos)
        EXPECT_TRUE(Valor(*rs, QString::fromUtf16(caso.columna)).esNulo()) << QString::fromUtf16(caso.columna).toStdString();
}

// Reports read their detail while the header is open, and write as they go.
TEST_P(Datos, UnResultadoGrandeLlegaEnteroAunqueCorranOtrasInstrucciones) {
    auto c = Abre();
    c->Execute(u"CREATE TABLE bitacora (n INTEGER)"_s);
    constexpr int kFilas = 200000;
    auto rs = c->Execute(Serie(kFilas));
    int64_t filas = 0, suma = 0;
    while (!rs->Eof()) {
        ++filas;
        suma += CLng(rs->Valor(0));
        if (filas % 50000 == 0) {
            auto detalle = c->Execute(Serie(3, u"d"_s));
            EXPECT_EQ(Filas(*detalle).size(), 3);
            c->Execute(u"INSERT INTO bitacora VALUES ("_s + QString::number(filas) + u')');
        }
        rs->MoveNext();
    }
    EXPECT_EQ(filas, kFilas);
    EXPECT_EQ(suma, int64_t{kFilas} * (kFilas + 1) / 2);
    // Written for good: another connection sees it.
    auto otra = Abre();
    EXPECT_EQ(Filas(*otra->Execute(u"SELECT COUNT(*) FROM bitacora"_s)), QStringList{u"4"_s});
}

TEST_P(Datos, UnErrorDejaLaConexionYLosDemasResultadosComoEstaban) {
    auto c = Abre();
    QString descripcion;
    EXPECT_EQ(NumeroDeError([&] { c->Execute(u"SELEC 1"_s); }, &descripcion), err::kErrorEnLaInstruccion);
    EXPECT_TRUE(descripcion.startsWith(u"Error en la instrucción SQL: "_s)) << descripcion.toStdString();
    EXPECT_TRUE(descripcion.contains(u"syntax error"_s)) << descripcion.toStdString();  // the driver's own text
    EXPECT_EQ(NumeroDeError([&] { c->Execute(u"SELECT * FROM no_existe"_s); }, &descripcion),
              err::kErrorEnLaInstruccion);
    EXPECT_TRUE(descripcion.contains(u"no_existe"_s)) << descripcion.toStdString();

    // A query that fails at its 150th row, beside a healthy one and a write.
    c->Execute(u"CREATE TABLE bitacora (n INTEGER)"_s);
    auto sana = c->Execute(Serie(300));
    sana->MoveNext();
    c->Execute(u"INSERT INTO bitacora VALUES (1)"_s);
    const QString falla = EsPostgres()
        ? u"SELECT 10 / (150 - i) FROM generate_series(1, 300) AS i"_s
        : u"WITH RECURSIVE s(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM s WHERE i < 300) "
          "SELECT CASE WHEN i < 150 THEN i ELSE abs(i - 150 - 9223372036854775807 - 1) END FROM s"_s;
    int leidas = 0;
    const int32_t numero = NumeroDeError([&] {
        auto rota = c->Execute(falla);
        for (; !rota->Eof(); rota->MoveNext()) ++leidas;
    });
    EXPECT_EQ(numero, err::kErrorEnLaInstruccion);
    EXPECT_GE(leidas, 100);  // it failed on the way, not on opening
    EXPECT_LT(leidas, 150);

    EXPECT_EQ(Filas(*sana).size(), 299);
    EXPECT_EQ(Filas(*c->Execute(u"SELECT 1"_s)), QStringList{u"1"_s});
    sana.reset();
    auto otra = Abre();
    EXPECT_EQ(Filas(*otra->Execute(u"SELECT COUNT(*) FROM bitacora"_s)), QStringList{u"1"_s});
}

const auto kNombreDelMotor = [](const ::testing::TestParamInfo<Motor>& i) {
    return std::string(i.param == Motor::Sqlite ? "SQLite" : "PostgreSQL");
};
INSTANTIATE_TEST_SUITE_P(Sqlite, Datos, ::testing::Values(Motor::Sqlite), kNombreDelMotor);
INSTANTIATE_TEST_SUITE_P(Postgres, Datos, ::testing::Values(Motor::Postgres), kNombreDelMotor);

// ---- Without a database -------------------------------------------------------

TEST(CadenaDeConexion, LeeLasClavesDeSiempreConSusSinonimos) {
    struct Caso {
        QString cadena;
        ParametrosDeConexion esperado;
    };
    const Caso casos[] = {
        {u"Data Source=c:\\datos\\tienda.db"_s, {u"QSQLITE"_s, u"c:\\datos\\tienda.db"_s, {}, -1, {}, {}}},
        {u" driver = {qpsql} ; SERVER=db1;Port= 5433 ;Database=tienda;UID=ana;PWD=x"_s,
         {u"QPSQL"_s, u"tienda"_s, u"db1"_s, 5433, u"ana"_s, u"x"_s}},
        {u"Provider=MSDASQL;Persist Security Info=False;Host=h;Initial Catalog=c;User ID=u;Password='a;''b'"_s,
         {u"QSQLITE"_s, u"c"_s, u"h"_s, -1, u"u"_s, u"a;'b"_s}},
        {u"Password={x;y};Database=\"z\";;basura"_s, {u"QSQLITE"_s, u"z"_s, {}, -1, {}, u"x;y"_s}},
    };
    for (const Caso& caso : casos) {
        const ParametrosDeConexion p = LeeCadenaDeConexion(caso.cadena);
        const ParametrosDeConexion& e = caso.esperado;
        EXPECT_EQ(QStringList({p.driver, p.baseDeDatos, p.servidor, p.usuario, p.contrasena}),
                  QStringList({e.driver, e.baseDeDatos, e.servidor, e.usuario, e.contrasena}))
            << caso.cadena.toStdString();
        EXPECT_EQ(p.puerto, e.puerto) << caso.cadena.toStdString();
    }
    for (const QString& mala : {u"Password='abc"_s, u"Port=cinco"_s, u"Database={x"_s})
        EXPECT_EQ(NumeroDeError([&] { LeeCadenaDeConexion(mala); }), err::kArgumentosNoValidos)
            << mala.toStdString();
}

TEST(Conexion, UnControladorQueNoEstaOUnArchivoQueNoAbreDejanLaConexionCerrada) {
    QTemporaryDir dir;
    Conexion c;
    QString descripcion;
    EXPECT_EQ(NumeroDeError([&] { c.Open(u"Driver=QNINGUNO"_s); }, &descripcion), err::kProveedorNoEncontrado);
    EXPECT_TRUE(descripcion.contains(u"QSQLITE"_s)) << descripcion.toStdString();  // what there is
    EXPECT_EQ(NumeroDeError([&] { c.Open(u"Data Source="_s + dir.filePath(u"no/hay/carpeta.db"_s)); }, &descripcion),
              err::kErrorNoEspecificado);
    EXPECT_TRUE(descripcion.startsWith(u"No se pudo abrir la conexión: "_s)) << descripcion.toStdString();
    EXPECT_EQ(c.State(), 0);
    c.Open(u"Data Source="_s + dir.filePath(u"si.db"_s));
    EXPECT_EQ(c.State(), 1);
}

TEST(Conexion, AbreConsultaUsaElExecuteDeOtraConexion) {
    auto ajena = std::make_shared<ObjetoGrabador>();
    auto resultado = std::make_shared<ObjetoGrabador>();
    ajena->Pon(u"Execute"_s, Variant(resultado));
    Impresora imp;
    EXPECT_EQ(imp.Llama(u"rst"_s, {u"SELECT 1"_s, ajena}).objeto(), resultado);
    EXPECT_EQ(ajena->Registro(), QStringList{u"Llama execute(SELECT 1)"_s});
    EXPECT_EQ(NumeroDeError([&] { imp.Llama(u"rst"_s, {u"SELECT 1"_s, Variant::Nada()}); }),
              err::kObjetoNoEstablecido);
}

// ---- PostgreSQL alone -----------------------------------------------------------

class PostgresSolo : public ::testing::Test {
protected:
    void SetUp() override {
        if (Postgres().carpeta.isEmpty()) GTEST_SKIP() << Postgres().motivo.toStdString();
    }
};

TEST_F(PostgresSolo, MonedaNumericosHorasYBytes) {
    Conexion c;
    c.Open(CadenaPostgres(Postgres().carpeta));
    auto rs = c.Execute(
        u"SELECT '-1234.56'::money AS m, 3.14159265358979::numeric AS n, 1.5::real AS r, '06:00'::time AS h, "
        "'\\x41ff'::bytea AS b, count(*) AS c FROM generate_series(1, 3)"_s);
    EXPECT_TRUE(rs->Valor(0).identico(Variant(Moneda{-12345600})));
    EXPECT_TRUE(rs->Valor(1).identico(Variant(3.14159265358979)));
    EXPECT_TRUE(rs->Valor(2).identico(Variant(1.5f)));
    EXPECT_TRUE(rs->Valor(3).identico(Variant::Fecha(0.25)));
    EXPECT_EQ(rs->Valor(4).texto(), QString::fromLatin1("A\xff"));
    EXPECT_TRUE(rs->Valor(5).identico(Variant(int32_t{3})));
}

// Inside the host's own transaction a cursor neither commits nor ends it.
TEST_F(PostgresSolo, LaTransaccionDelHostEsDelHost) {
    Conexion c;
    c.Open(CadenaPostgres(Postgres().carpeta));
    c.Execute(u"CREATE TEMP TABLE t (n INTEGER)"_s);
    c.Execute(u"BEGIN"_s);
    c.Execute(u"INSERT INTO t VALUES (1)"_s);
    EXPECT_EQ(Filas(*c.Execute(u"SELECT n FROM generate_series(1, 1000) AS n"_s)).size(), 1000);
    EXPECT_EQ(NumeroDeError([&] { c.Execute(u"SELECT * FROM no_existe"_s); }), err::kErrorEnLaInstruccion);
    EXPECT_EQ(Filas(*c.Execute(u"SELECT count(*) FROM t"_s)), QStringList{u"1"_s});  // still usable
    c.Execute(u"ROLLBACK"_s);
    EXPECT_EQ(Filas(*c.Execute(u"SELECT count(*) FROM t"_s)), QStringList{u"0"_s});
}

// A server that goes away: the open connection fails with the driver's text,
// and opening again is refused, without a crash.
TEST_F(PostgresSolo, UnServidorDetenidoRechazaLaConexion) {
    QTemporaryDir base;
    QString carpeta;
    ASSERT_TRUE(ScriptPostgres({u"inicia"_s, base.path(), QString::number(QCoreApplication::applicationPid())},
                               &carpeta))
        << carpeta.toStdString();
    Conexion c;
    c.Open(CadenaPostgres(carpeta));
    auto rs = c.Execute(u"SELECT n FROM generate_series(1, 1000) AS n"_s);
    ASSERT_TRUE(ScriptPostgres({u"detiene"_s, base.path()}));

    QString descripcion;
    EXPECT_EQ(NumeroDeError([&] { Filas(*rs); }, &descripcion), err::kErrorEnLaInstruccion);
    EXPECT_NE(NumeroDeError([&] { c.Execute(u"SELECT 1"_s); }), 0);
    c.Close();
    EXPECT_EQ(NumeroDeError([&] { c.Open(); }, &descripcion), err::kErrorNoEspecificado);
    EXPECT_TRUE(descripcion.contains(carpeta)) << descripcion.toStdString();  // libpq names the socket
    EXPECT_EQ(c.State(), 0);
}

}  // namespace
