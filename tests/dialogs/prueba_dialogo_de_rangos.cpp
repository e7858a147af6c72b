// Rangos (frmPMCombo) and its branch switch, driven by the controls'
// published names, with lookups on real SQLite databases.

#include "comun/prueba.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>

#include "automation/interfaz.h"
#include "data/conexion.h"
#include "data/servidor_postgres.h"
#include "dialogs/conduce_dialogo.h"
#include "dialogs/multi_combo.h"
#include "kaloimpresora/mensajes.h"

namespace {

// The host's branch list: Count, and Item(i) from 1 with Name and Connection.
class Sucursales : public ConTabla<Sucursales> {
public:
    std::vector<std::shared_ptr<Objeto>> items;
    void Agrega(const QString& nombre, std::shared_ptr<Objeto> conexion) {
        auto item = std::make_shared<ObjetoGrabador>();
        item->Pon(u"Name"_s, nombre);
        item->Pon(u"Connection"_s, Variant(std::move(conexion)));
        items.push_back(item);
    }
    static const TablaDeMiembros& Tabla() {
        static const Interfaz<Sucursales> t(u"Sucursales"_s, {
            PropiedadDeLectura<Sucursales>(u"Count"_s, 1, TipoDato::Largo, [](Sucursales& s) { return Variant(int32_t(s.items.size())); }),
            Metodo<Sucursales>(u"Item"_s, 0, TipoDato::Objeto, {PorValor(u"i"_s, TipoDato::Largo)},
                               [](Sucursales& s, std::span<Variant> a) { return Variant(s.items.at(size_t(a[0].largo() - 1))); })});
        return t;
    }
};

std::shared_ptr<Conexion> Base(const QString& archivo, const QString& prefijo, int filas) {
    auto c = std::make_shared<Conexion>();
    c->Open(u"Data Source="_s + archivo);
    c->Execute(u"CREATE TABLE articulos (clave TEXT, nombre TEXT, precio REAL)"_s);
    for (int i = 1; i <= filas; ++i) c->Execute(u"INSERT INTO articulos VALUES ('%1%2', 'Artículo %2', %2.5)"_s.arg(prefijo).arg(i));
    return c;
}

dialogos::MultiCombo* Lookup(QWidget& w, int i) { return dynamic_cast<dialogos::MultiCombo*>(Control(w, u"MultiCombo1(%1)"_s.arg(i))); }
QLineEdit* Caja(QWidget& w, int i) { return Control<QLineEdit>(w, u"txtFields(%1)"_s.arg(i)); }
bool Marcada(QWidget& w, const QString& n) { return Control<QCheckBox>(w, n)->isChecked(); }
void Pulsa(QWidget& w, const QString& n) { QTest::mouseClick(Control<QPushButton>(w, n), Qt::LeftButton); }
QString Foco(QWidget& w) { return w.focusWidget() ? w.focusWidget()->objectName() : QString(); }

class Rangos : public ::testing::Test {
protected:
    void SetUp() override {
        SustituyeUtilerias(util);
        EstablecePresentadorDeMensajes([this](const QString& texto, int32_t estilo, const QString& titulo) {
            mensajes << u"%1|%2|%3"_s.arg(texto).arg(estilo).arg(titulo);
            return respuesta::kAceptar;
        });
        matriz = Base(dir.filePath(u"matriz.db"_s), u"M"_s, 5);
        ambiente->Conexion = matriz;
        pd->ParametrosRequeridos(u"SELECT clave, nombre, precio FROM articulos ORDER BY clave"_s, u"Desde"_s,
                                 u"SELECT nombre FROM articulos"_s, u"Hasta"_s, u"SELECT clave FROM articulos"_s,
                                 u"Desde 2"_s, u"SELECT precio FROM articulos"_s, u"Hasta 2"_s, true, true, true,
                                 u"Con existencias"_s);
        imp.ParamData = pd;
        imp.FechaInicial = 7;
    }
    void Abre(std::function<void(QWidget&)> accion, bool usarListView = true) {
        AlMostrarse al(u"frmPMCombo"_s, std::move(accion));
        imp.Llama(u"Rangos"_s, {ambiente, usarListView});
        EXPECT_TRUE(al.visto);
    }

    QTemporaryDir dir;
    std::shared_ptr<Conexion> matriz;
    std::shared_ptr<Ambiente> ambiente = AmbienteDeFebrero();
    std::shared_ptr<ParamData> pd = std::make_shared<ParamData>();
    Impresora imp;
    std::shared_ptr<UtileriasVigiladas> util = std::make_shared<UtileriasVigiladas>();
    QStringList mensajes;
};

// Without sections only the branch strip and the buttons stay; the hidden
// controls answer with their designed values, in a fresh ParamData only.
TEST_F(Rangos, SinSeccionesRespondeConLosValoresDelDiseno) {
    pd->Param1 = pd->Param2 = pd->Fechas = pd->Check = false;
    Abre([](QWidget& w) {
        EXPECT_EQ(w.height(), qRound((4905 - 1215 - 1155 - 1005 - 375) * w.logicalDpiY() / 1440.0));
        for (const char16_t* n : {u"Picture1(0)", u"Picture1(1)", u"Picture1(2)", u"Picture1(5)", u"Picture1(3)"})
            EXPECT_FALSE(Control(w, QString::fromUtf16(n))->isVisible());
        EXPECT_EQ(Control(w, u"Picture1(4)"_s)->geometry().bottom(), w.height() - 1);
        EXPECT_EQ(Foco(w), u"Command1"_s);  // the hidden first box refused it
        Pulsa(w, u"Command1"_s);
    });
    const ParamData& r = *imp.ParamData;
    EXPECT_NE(imp.ParamData, pd);
    EXPECT_TRUE(r.BusquedaIni.isEmpty() && r.BusquedaFin2.isEmpty() && r.QueryIni.isEmpty());
    EXPECT_TRUE(r.Todos1 && r.Todos2 && r.TodasLasFechas && r.CheckValue && r.SoloSeleccionados);
    EXPECT_FALSE(r.TodosLosRegistros);
    EXPECT_EQ(r.FechaInicial, kUltimoDeFebrero);
    EXPECT_EQ(r.FechaFinal, kUltimoDeFebrero);
    EXPECT_EQ(imp.FechaInicial, 7);
    EXPECT_FALSE(imp.Cancelado || imp.SoloSeleccionados);
    EXPECT_EQ(util->registro, QStringList(2, u"FechaDePeriodo(2024,2)"_s));
}

// The second range's labels are crossed; without the list view Check2 is
// cleared and disabled; the lookups run the caller's queries on Conexion.
TEST_F(Rangos, CargaLeyendasCruzadasConsultasYOpcion) {
    pd->Param1 = false;
    Abre(
        [&](QWidget& w) {
            EXPECT_EQ(Control(w, u"Picture1(1)"_s)->y(), qRound(405 * w.logicalDpiY() / 1440.0));
            auto* arriba = Control<QLabel>(w, u"Label1(3)"_s);
            EXPECT_LT(arriba->y(), Control<QLabel>(w, u"Label1(2)"_s)->y());
            EXPECT_EQ(arriba->text(), u"Hasta 2"_s);
            EXPECT_EQ(Control<QLabel>(w, u"Label1(2)"_s)->text(), u"Desde 2"_s);
            EXPECT_EQ(Control<QLabel>(w, u"Label1(1)"_s)->text(), u"Hasta"_s);
            EXPECT_EQ(Control<QCheckBox>(w, u"CheckBoolean"_s)->text(), u"Con existencias"_s);
            EXPECT_TRUE(Marcada(w, u"CheckBoolean"_s));
            EXPECT_FALSE(Marcada(w, u"Check2"_s) || Control(w, u"Check2"_s)->isEnabled());
            EXPECT_EQ(Lookup(w, 3)->DataQuery, u"SELECT precio FROM articulos"_s);
            for (int i = 0; i < 4; ++i) EXPECT_EQ(Lookup(w, i)->DataConnection, matriz);
            QTest::mouseClick(Control(w, u"CheckBoolean"_s), Qt::LeftButton, {}, QPoint(5, 5));
            Pulsa(w, u"Command1"_s);
        },
        false);
    EXPECT_FALSE(imp.ParamData->SoloSeleccionados || imp.ParamData->CheckValue);
}

// Typing in an initial box overwrites the final one and unticks "all"; the
// final box changes alone. Enter moves on to Aceptar and never accepts. Only
// the start date unticks "all dates".
TEST_F(Rangos, EscrituraIntroYFechas) {
    Abre([&](QWidget& w) {
        EXPECT_EQ(Foco(w), u"txtFields(0)"_s);
        for (int i : {0, 2}) {
            QTest::keyClicks(Caja(w, i + 1), u"zzz"_s);
            Control<QCheckBox>(w, u"chkParam1(%1)"_s.arg(i / 2))->setChecked(true);
            QTest::keyClicks(Caja(w, i), u"ab"_s);
            EXPECT_EQ(Caja(w, i + 1)->text(), u"ab"_s);
            EXPECT_FALSE(Marcada(w, u"chkParam1(%1)"_s.arg(i / 2)));
            QTest::keyClicks(Caja(w, i + 1), u"c"_s);
            EXPECT_EQ(Caja(w, i)->text(), u"ab"_s);
        }
        QStringList focos;  // each box with its whole text selected on the way in
        Control(w, u"Command2"_s)->setFocus();
        Caja(w, 0)->setFocus();
        for (int i = 0; i < 4; ++i, QCoreApplication::processEvents()) {
            focos << Foco(w) + u':' + w.focusWidget()->property("selectedText").toString();
            QTest::keyClick(w.focusWidget(), Qt::Key_Return);
        }
        EXPECT_EQ(focos, QStringList({u"txtFields(0):ab"_s, u"txtFields(1):abc"_s, u"txtFields(2):ab"_s, u"txtFields(3):abc"_s}));
        EXPECT_EQ(Foco(w), u"Command1"_s);
        EXPECT_EQ(util->De(u"EnviaTeclas"_s), QStringList(4, u"EnviaTeclas({TAB},false)"_s));
        Control<QDateEdit>(w, u"DTPicker2"_s)->setDate(QDate(2024, 3, 31));
        EXPECT_TRUE(Marcada(w, u"chkParam1(2)"_s));
        Control<QDateEdit>(w, u"DTPicker1"_s)->setDate(QDate(2024, 3, 1));
        EXPECT_FALSE(Marcada(w, u"chkParam1(2)"_s));
        Pulsa(w, u"Command1"_s);
    });
    const ParamData& r = *imp.ParamData;
    EXPECT_EQ(QStringList({r.BusquedaIni, r.BusquedaFin, r.BusquedaIni2, r.BusquedaFin2}),
              QStringList({u"ab"_s, u"abc"_s, u"ab"_s, u"abc"_s}));
    EXPECT_FALSE(r.Todos1 || r.Todos2 || r.TodasLasFechas);
    EXPECT_EQ(r.FechaInicial, 45352);
    EXPECT_EQ(r.FechaFinal, 45382);
}

// Down arrow lists the query's rows; a blank final box takes the initial
// text, a filled one keeps its own; a chosen row gives its first column; a
// failing query opens nothing and the rest of the handler still runs.
TEST_F(Rangos, FlechaAbajoMuestraLasFilasDeLaConsulta) {
    Abre([&](QWidget& w) {
        QTest::keyClicks(Caja(w, 0), u"M2"_s);
        Caja(w, 1)->clear();
        QTest::keyClick(Caja(w, 0), Qt::Key_Down);
        QTableView* lista = Lookup(w, 0)->Lista();
        ASSERT_NE(lista, nullptr);
        EXPECT_EQ(lista->model()->rowCount() * 10 + lista->model()->columnCount(), 53);
        EXPECT_EQ(lista->model()->headerData(1, Qt::Horizontal).toString(), u"nombre"_s);
        EXPECT_EQ(Caja(w, 1)->text(), u"M2"_s);
        EXPECT_EQ(Caja(w, 0)->cursorPosition(), 0);
        QTest::mouseClick(lista->viewport(), Qt::LeftButton, {}, lista->visualRect(lista->model()->index(3, 2)).center());
        EXPECT_EQ(Lookup(w, 0)->Lista(), nullptr);
        EXPECT_EQ(Caja(w, 0)->text() + Caja(w, 1)->text(), u"M4M4"_s);

        Caja(w, 3)->setText(u"propio"_s);
        QTest::keyClick(Caja(w, 2), Qt::Key_Down);
        ASSERT_NE(Lookup(w, 2)->Lista(), nullptr);
        QTest::keyClick(Lookup(w, 2)->Lista(), Qt::Key_Escape);
        EXPECT_EQ(Caja(w, 3)->text(), u"propio"_s);
        Lookup(w, 0)->DataQuery = u"SELECT * FROM no_existe"_s;
        Caja(w, 1)->clear();
        QTest::keyClick(Caja(w, 0), Qt::Key_Down);
        EXPECT_EQ(Lookup(w, 0)->Lista(), nullptr);
        EXPECT_EQ(Caja(w, 1)->text(), u"M4"_s);
        w.close();
    });
}

TEST_F(Rangos, UnaConsultaDeCienMilFilasAbreEnseguida) {
    pd->QueryIni = u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 100000) "
                   "SELECT printf('A%06d', i) AS clave, i FROM n"_s;
    Abre([](QWidget& w) {
        QTest::keyClick(Caja(w, 0), Qt::Key_Down);
        QTableView* lista = Lookup(w, 0)->Lista();
        ASSERT_NE(lista, nullptr);
        const int leidas = lista->model()->rowCount();
        EXPECT_LT(leidas, 1000);
        lista->scrollToBottom();
        QCoreApplication::processEvents();
        EXPECT_GT(lista->model()->rowCount(), leidas);
        QTest::keyClick(lista, Qt::Key_Return);
        EXPECT_EQ(Caja(w, 0)->text(), u"A000001"_s);
        w.close();
    });
}

TEST_F(Rangos, FallasAntesDeMostrarseYMetodosInertes) {
    imp.ParamData = nullptr;
    EXPECT_EQ(NumeroDeError([&] { imp.Llama(u"Rangos"_s, {ambiente, true}); }), err::kObjetoNoEstablecido);
    imp.ParamData = pd;
    EXPECT_EQ(NumeroDeError([&] { imp.Llama(u"Rangos"_s, {Variant::Nada(), true}); }), err::kObjetoNoEstablecido);
    EXPECT_TRUE(imp.Llama(u"RangoDeDatos"_s, {u"a"_s, u"b"_s, u"c"_s, u"d"_s, ambiente}).esVacio());
    EXPECT_TRUE(imp.Llama(u"Seleccion"_s, {u"a"_s, u"b"_s, Variant::Nada(), ambiente}).esVacio());
    EXPECT_TRUE(imp.Llama(u"RangoDeAlcance"_s, {u"a"_s, Variant::Nada()}).esVacio());
    EXPECT_EQ(imp.ParamData, pd);
    EXPECT_EQ(util->registro, QStringList());
}

// ---- Branch switch ----------------------------------------------------------

class CambioDeSucursal : public Rangos {
protected:
    void SetUp() override {
        Rangos::SetUp();
        norte = Base(dir.filePath(u"norte.db"_s), u"N"_s, 3);
        norte->Close();  // the switch opens it
        sur = Base(dir.filePath(u"sur.db"_s), u"S"_s, 2);
        sucursales->Agrega(u"Norte"_s, norte);
        sucursales->Agrega(u" Sur "_s, std::make_shared<Conexion>());  // the later one wins
        sucursales->Agrega(u"Sur"_s, sur);
        ambiente->Sucursales = sucursales;
        ambiente->Empresa = u"Tienda"_s;
        ambiente->Parametros = std::make_shared<ObjetoGrabador>();
    }
    std::shared_ptr<Sucursales> sucursales = std::make_shared<Sucursales>();
    std::shared_ptr<Conexion> norte, sur;
};

TEST_F(CambioDeSucursal, ElegirUnaSucursalApuntaLasConsultasASuBase) {
    Abre([&](QWidget& w) {
        auto* combo = Control<QComboBox>(w, u"Combo1"_s);
        EXPECT_EQ(combo->itemText(1) + combo->currentText(), u" Sur "_s);  // listed as they stand; none chosen
        combo->setCurrentIndex(0);
        emit combo->activated(0);  // a click in the list
        auto* rama = dynamic_cast<Ambiente*>(imp.AmbienteSucursal.get());
        ASSERT_NE(rama, nullptr);
        EXPECT_EQ(rama->Conexion, norte);
        EXPECT_EQ(norte->State(), 1);
        EXPECT_EQ(rama->NombreSucursal + rama->Empresa, u"NorteTienda"_s);
        EXPECT_EQ(rama->Parametros, ambiente->Parametros);
        QTest::keyClick(Caja(w, 0), Qt::Key_Down);
        ASSERT_NE(Lookup(w, 0)->Lista(), nullptr);
        EXPECT_EQ(Lookup(w, 0)->Lista()->model()->index(2, 0).data().toString(), u"N3"_s);
        QTest::keyClick(Lookup(w, 0)->Lista(), Qt::Key_Escape);
        // Trimmed names compare; the name is kept as typed; an open
        // connection is not opened again (that would fail and show 823).
        combo->setEditText(u"  Sur"_s);
        rama = dynamic_cast<Ambiente*>(imp.AmbienteSucursal.get());
        ASSERT_NE(rama, nullptr);
        EXPECT_EQ(rama->Conexion, sur);
        EXPECT_EQ(rama->NombreSucursal, u"  Sur"_s);
        EXPECT_EQ(Lookup(w, 3)->DataConnection, sur);
        combo->setEditText(u"  Su"_s);  // matches nothing: nothing changes
        EXPECT_EQ(imp.AmbienteSucursal.get(), rama);
        combo->setEditText(QString());
        EXPECT_EQ(imp.AmbienteSucursal, nullptr);
        for (int i = 0; i < 4; ++i) EXPECT_EQ(Lookup(w, i)->DataConnection, matriz);
        combo->setEditText(u"Sur"_s);
        Pulsa(w, u"Command2"_s);
    });
    EXPECT_TRUE(imp.Cancelado);
    EXPECT_EQ(imp.ParamData, pd);
    ASSERT_NE(imp.AmbienteSucursal, nullptr);
    EXPECT_EQ(imp.AmbienteSucursal->Lee(u"Conexion"_s).objeto(), sur);
    EXPECT_EQ(mensajes, QStringList());
    EXPECT_EQ(ambiente->NombreSucursal, u""_s);
}

// A branch whose server is stopped: one information message, the combo
// emptied and the main environment back.
class PostgresRangos : public CambioDeSucursal {};

TEST_F(PostgresRangos, UnaSucursalConElServidorDetenidoDaElMensaje823) {
    if (Postgres().carpeta.isEmpty()) GTEST_SKIP() << Postgres().motivo.toStdString();
    QTemporaryDir base;
    QString carpeta;
    ASSERT_TRUE(ScriptPostgres({u"inicia"_s, base.path(), QString::number(QCoreApplication::applicationPid())}, &carpeta));
    auto centro = std::make_shared<Conexion>();
    centro->ConnectionString(CadenaPostgres(carpeta));
    ASSERT_TRUE(ScriptPostgres({u"detiene"_s, base.path()}));
    sucursales->Agrega(u"Centro"_s, centro);
    Abre([&](QWidget& w) {
        auto* combo = Control<QComboBox>(w, u"Combo1"_s);
        combo->setEditText(u"Norte"_s);
        combo->setEditText(u"Centro"_s);
        EXPECT_EQ(combo->currentText(), u""_s);
        EXPECT_EQ(imp.AmbienteSucursal, nullptr);
        EXPECT_EQ(Lookup(w, 2)->DataConnection, matriz);
        w.close();
    });
    EXPECT_EQ(mensajes, QStringList{u"No se pudo abrir la base de datos de la sucursal.|64|"_s});
    EXPECT_EQ(centro->State(), 0);
}

}  // namespace
