// Rangos (frmPMCombo) and its branch switch, driven by the controls'
// published names, with lookups on real SQLite databases.

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>

#include "comun/objeto_grabador.h"
#include "comun/utilerias_de_prueba.h"
#include "data/conexion.h"
#include "data/servidor_postgres.h"
#include "dialogs/conduce_dialogo.h"
#include "dialogs/multi_combo.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/mensajes.h"

using namespace kalo;
using namespace kalo::prueba;
using namespace Qt::StringLiterals;

namespace {

// The branch list the host keeps in its environment: Count and Item(i) from 1.
class Coleccion : public Objeto {
public:
    std::vector<std::shared_ptr<Objeto>> items;
    int32_t IdDeNombre(const QString& n) const override {
        if (n.compare(u"Count"_s, Qt::CaseInsensitive) == 0) return 1;
        if (n.compare(u"Item"_s, Qt::CaseInsensitive) == 0) return 2;
        return kDispidDesconocido;
    }
    Variant Invoca(int32_t id, Llamada tipo, std::span<Variant> a) override {
        if (id == 1) return int32_t(items.size());
        if (id == 2 && a.size() == 1) {
            const int32_t i = CLng(a[0]);
            if (i < 1 || i > int32_t(items.size())) Lanza(err::kSubindiceFueraDeIntervalo);
            return items[size_t(i - 1)];
        }
        return Objeto::Invoca(id, tipo, a);
    }
    void Agrega(const QString& nombre, std::shared_ptr<Objeto> conexion) {
        auto item = std::make_shared<ObjetoGrabador>();
        item->Pon(u"Name"_s, nombre);
        item->Pon(u"Connection"_s, Variant(std::move(conexion)));
        items.push_back(item);
    }
};

// A SQLite file with a table of articles whose keys start with `prefijo`.
std::shared_ptr<Conexion> Base(const QString& archivo, const QString& prefijo, int filas) {
    auto c = std::make_shared<Conexion>();
    c->Open(u"Data Source="_s + archivo);
    c->Execute(u"CREATE TABLE articulos (clave TEXT, nombre TEXT, precio REAL)"_s);
    for (int i = 1; i <= filas; ++i)
        c->Execute(u"INSERT INTO articulos VALUES ('%1%2', 'Artículo %2', %3)"_s.arg(prefijo).arg(i).arg(i * 1.5));
    return c;
}

dialogos::MultiCombo* Lookup(QWidget& w, int i) {
    return dynamic_cast<dialogos::MultiCombo*>(Control(w, u"MultiCombo1(%1)"_s.arg(i)));
}
QLineEdit* Caja(QWidget& w, int i) { return Control<QLineEdit>(w, u"txtFields(%1)"_s.arg(i)); }
QCheckBox* Casilla(QWidget& w, const QString& n) { return Control<QCheckBox>(w, n); }
void Pulsa(QWidget& w, const QString& boton) { QTest::mouseClick(Control<QPushButton>(w, boton), Qt::LeftButton); }
QString Foco(QWidget& w) { return w.focusWidget() ? w.focusWidget()->objectName() : QString(); }

class Rangos : public ::testing::Test {
protected:
    void SetUp() override {
        SustituyeUtilerias(util);
        EstablecePresentadorDeMensajes([this](const QString& texto, int32_t estilo, const QString& titulo) {
            mensajes << u"%1|%2|%3"_s.arg(texto).arg(estilo).arg(titulo);
            return respuesta::kAceptar;
        });
        ASSERT_TRUE(dir.isValid());
        matriz = Base(dir.filePath(u"matriz.db"_s), u"M"_s, 5);
        ambiente->Conexion = matriz;
        pd = std::make_shared<ParamData>();
        pd->ParametrosRequeridos(u"SELECT clave, nombre, precio FROM articulos ORDER BY clave"_s, u"Desde"_s,
                                 u"SELECT nombre FROM articulos"_s, u"Hasta"_s, u"SELECT clave FROM articulos"_s,
                                 u"Desde 2"_s, u"SELECT precio FROM articulos"_s, u"Hasta 2"_s, true, true, true,
                                 u"Con existencias"_s);
        imp.ParamData = pd;
        imp.FechaInicial = 7;
        imp.Observ = u"nota"_s;
    }
    void Abre(std::function<void(QWidget&)> accion, bool usarListView = true) {
        AlMostrarse al(u"frmPMCombo"_s, std::move(accion));
        imp.Llama(u"Rangos"_s, {ambiente, usarListView});
        EXPECT_TRUE(al.visto);
    }

    QTemporaryDir dir;
    std::shared_ptr<Conexion> matriz;
    std::shared_ptr<Ambiente> ambiente = AmbienteDeFebrero();
    std::shared_ptr<ParamData> pd;
    Impresora imp;
    std::shared_ptr<UtileriasVigiladas> util = std::make_shared<UtileriasVigiladas>();
    QStringList mensajes;
};

TEST_F(Rangos, SinNingunaSeccionSoloQuedanSucursalYBotones) {
    pd->Param1 = pd->Param2 = pd->Fechas = pd->Check = false;
    pd->CheckValue = true;
    Abre([](QWidget& w) {
        const double ppy = w.logicalDpiY();
        EXPECT_EQ(w.height(), qRound((4905 - 1215 - 1155 - 1005 - 375) * ppy / 1440));
        EXPECT_EQ(w.windowTitle(), u"Rangos..."_s);
        EXPECT_FALSE(w.windowIcon().isNull());
        for (const char16_t* n : {u"Picture1(0)", u"Picture1(1)", u"Picture1(2)", u"Picture1(5)", u"Picture1(3)"})
            EXPECT_FALSE(Control(w, QString::fromUtf16(n))->isVisible()) << QString::fromUtf16(n).toStdString();
        EXPECT_EQ(Control(w, u"Picture2"_s)->y(), 0);
        EXPECT_EQ(Control(w, u"Picture1(4)"_s)->geometry().bottom(), w.height() - 1);
        // The first box is asked for the focus all the same; its panel is hidden.
        EXPECT_EQ(Foco(w), u"Command1"_s) << Foco(w).toStdString();
        Pulsa(w, u"Command1"_s);
    });
    ParamData& r = *imp.ParamData;
    EXPECT_NE(imp.ParamData, pd);
    EXPECT_TRUE(r.BusquedaIni.isEmpty() && r.BusquedaFin.isEmpty() && r.BusquedaIni2.isEmpty());
    EXPECT_TRUE(r.Todos1 && r.Todos2 && r.TodasLasFechas && r.CheckValue && r.SoloSeleccionados);
    EXPECT_FALSE(r.TodosLosRegistros);
    EXPECT_EQ(r.FechaInicial, kUltimoDeFebrero);
    EXPECT_EQ(r.FechaFinal, kUltimoDeFebrero);
    EXPECT_TRUE(r.QueryIni.isEmpty() && !r.Param1);  // a fresh record: nothing of the caller's
    // The answers travel only in ParamData.
    EXPECT_EQ(imp.FechaInicial, 7);
    EXPECT_FALSE(imp.Cancelado || imp.Todos || imp.SoloSeleccionados);
    EXPECT_EQ(util->De(u"FechaDePeriodo"_s).size(), 2);
    EXPECT_EQ(util->De(u"PreparaFormulario"_s).size(), 0);
}

TEST_F(Rangos, CargaLeyendasCruzadasConsultasYOpcion) {
    pd->Param1 = false;
    Abre(
        [&](QWidget& w) {
            const double ppy = w.logicalDpiY();
            // The second range moves up into the first one's place.
            EXPECT_EQ(Control(w, u"Picture1(1)"_s)->y(), qRound(405 * ppy / 1440));
            EXPECT_EQ(w.height(), qRound((4905 - 1215) * ppy / 1440));
            EXPECT_EQ(Control<QLabel>(w, u"Label1(0)"_s)->text(), u"Desde"_s);
            EXPECT_EQ(Control<QLabel>(w, u"Label1(1)"_s)->text(), u"Hasta"_s);
            // Crossed: the upper label of the second range is Label1(3), with LeyendaFin2.
            auto* arriba = Control<QLabel>(w, u"Label1(3)"_s);
            auto* abajo = Control<QLabel>(w, u"Label1(2)"_s);
            EXPECT_LT(arriba->y(), abajo->y());
            EXPECT_EQ(arriba->text(), u"Hasta 2"_s);
            EXPECT_EQ(abajo->text(), u"Desde 2"_s);
            EXPECT_EQ(Casilla(w, u"CheckBoolean"_s)->text(), u"Con existencias"_s);
            EXPECT_TRUE(Casilla(w, u"CheckBoolean"_s)->isChecked());
            EXPECT_EQ(Lookup(w, 3)->DataQuery, u"SELECT precio FROM articulos"_s);
            for (int i = 0; i < 4; ++i) EXPECT_EQ(Lookup(w, i)->DataConnection, matriz);
            auto* check2 = Casilla(w, u"Check2"_s);
            EXPECT_FALSE(check2->isChecked() || check2->isEnabled() || check2->isVisible());
            EXPECT_EQ(Control<QComboBox>(w, u"Combo1"_s)->currentText(), u""_s);
            QTest::mouseClick(Casilla(w, u"CheckBoolean"_s), Qt::LeftButton, {}, QPoint(5, 5));
            Pulsa(w, u"Command1"_s);
        },
        false);
    EXPECT_FALSE(imp.ParamData->SoloSeleccionados);
    EXPECT_FALSE(imp.ParamData->CheckValue);
}

// Typing in an initial box overwrites the final one and unticks "all"; the
// final box changes alone. The start date unticks "all dates", the end date not.
TEST_F(Rangos, EspejoYCasillasAlEscribir) {
    Abre([](QWidget& w) {
        EXPECT_EQ(Foco(w), u"txtFields(0)"_s);  // activation
        for (int par : {0, 2}) {
            auto* todos = Casilla(w, u"chkParam1(%1)"_s.arg(par / 2));
            QLineEdit* ini = Caja(w, par);
            QLineEdit* fin = Caja(w, par + 1);
            QTest::keyClicks(fin, u"zzz"_s);
            EXPECT_FALSE(todos->isChecked());
            todos->setChecked(true);
            QTest::keyClicks(ini, u"ab"_s);
            EXPECT_EQ(fin->text(), u"ab"_s);
            EXPECT_FALSE(todos->isChecked());
            QTest::keyClicks(fin, u"c"_s);
            EXPECT_EQ(ini->text(), u"ab"_s);
            EXPECT_EQ(fin->text(), u"abc"_s);
        }
        auto* fechas = Casilla(w, u"chkParam1(2)"_s);
        Control<QDateEdit>(w, u"DTPicker2"_s)->setDate(QDate(2024, 3, 31));
        EXPECT_TRUE(fechas->isChecked());
        Control<QDateEdit>(w, u"DTPicker1"_s)->setDate(QDate(2024, 3, 1));
        EXPECT_FALSE(fechas->isChecked());
        // Getting the focus selects the whole text.
        Caja(w, 3)->setFocus();
        EXPECT_EQ(Caja(w, 3)->selectedText(), u"abc"_s);
        Pulsa(w, u"Command1"_s);
    });
    const ParamData& r = *imp.ParamData;
    EXPECT_EQ(QStringList({r.BusquedaIni, r.BusquedaFin, r.BusquedaIni2, r.BusquedaFin2}),
              QStringList({u"ab"_s, u"abc"_s, u"ab"_s, u"abc"_s}));
    EXPECT_FALSE(r.Todos1 || r.Todos2 || r.TodasLasFechas);
    EXPECT_EQ(r.FechaInicial, 45352);  // 1 March 2024
    EXPECT_EQ(r.FechaFinal, 45382);
}

TEST_F(Rangos, IntroPasaAlSiguienteYNuncaAcepta) {
    Abre([&](QWidget& w) {
        QStringList focos;
        for (int i = 0; i < 4; ++i) {
            focos << Foco(w);
            QTest::keyClick(w.focusWidget(), Qt::Key_Return);
            QCoreApplication::processEvents();
        }
        focos << Foco(w);
        EXPECT_EQ(focos, QStringList({u"txtFields(0)"_s, u"txtFields(1)"_s, u"txtFields(2)"_s, u"txtFields(3)"_s,
                                      u"Command1"_s}));
        EXPECT_EQ(util->De(u"EnviaTeclas"_s), QStringList(4, u"EnviaTeclas({TAB},False)"_s));
        EXPECT_TRUE(w.isVisible());
        Pulsa(w, u"Command2"_s);
    });
    EXPECT_EQ(imp.ParamData, pd);
    EXPECT_TRUE(imp.Cancelado);
}

// Down arrow lists the lookup's rows; a blank final box takes the initial
// one's text, a filled one keeps its own; a chosen row gives its first column.
TEST_F(Rangos, FlechaAbajoMuestraLasFilasDeLaConsulta) {
    Abre([&](QWidget& w) {
        QLineEdit* ini = Caja(w, 0);
        QTest::keyClicks(ini, u"M2"_s);
        Caja(w, 1)->clear();
        QTest::keyClick(ini, Qt::Key_Down);
        QTableView* lista = Lookup(w, 0)->Lista();
        ASSERT_NE(lista, nullptr);
        EXPECT_EQ(lista->model()->rowCount(), 5);
        EXPECT_EQ(lista->model()->columnCount(), 3);
        EXPECT_EQ(lista->model()->headerData(1, Qt::Horizontal).toString(), u"nombre"_s);
        EXPECT_EQ(lista->model()->index(4, 1).data().toString(), u"Artículo 5"_s);
        EXPECT_EQ(ini->cursorPosition(), 0);
        EXPECT_EQ(Caja(w, 1)->text(), u"M2"_s);
        QTest::mouseClick(lista->viewport(), Qt::LeftButton, {}, lista->visualRect(lista->model()->index(3, 2)).center());
        EXPECT_EQ(Lookup(w, 0)->Lista(), nullptr);
        EXPECT_EQ(ini->text(), u"M4"_s);
        EXPECT_EQ(Caja(w, 1)->text(), u"M4"_s);  // mirrored by the change

        Caja(w, 3)->setText(u"propio"_s);
        QTest::keyClicks(Caja(w, 2), u"x"_s);
        Caja(w, 3)->setText(u"propio"_s);
        QTest::keyClick(Caja(w, 2), Qt::Key_Down);
        ASSERT_NE(Lookup(w, 2)->Lista(), nullptr);
        QTest::keyClick(Lookup(w, 2)->Lista(), Qt::Key_Escape);
        EXPECT_EQ(Caja(w, 3)->text(), u"propio"_s);
        EXPECT_EQ(Caja(w, 2)->text(), u"x"_s);
        // A query that fails opens nothing, and the rest of the handler runs.
        Lookup(w, 2)->DataQuery = u"SELECT * FROM no_existe"_s;
        Caja(w, 3)->clear();
        QTest::keyClick(Caja(w, 2), Qt::Key_Down);
        EXPECT_EQ(Lookup(w, 2)->Lista(), nullptr);
        EXPECT_EQ(Caja(w, 3)->text(), u"x"_s);
        Pulsa(w, u"Command1"_s);
    });
    EXPECT_EQ(imp.ParamData->BusquedaIni, u"M4"_s);
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
        EXPECT_TRUE(lista->model()->canFetchMore({}));
        lista->scrollToBottom();
        QCoreApplication::processEvents();
        EXPECT_GT(lista->model()->rowCount(), leidas);
        EXPECT_EQ(lista->model()->index(0, 0).data().toString(), u"A000001"_s);
        QTest::keyClick(lista, Qt::Key_Return);
        EXPECT_EQ(Caja(w, 0)->text(), u"A000001"_s);
        w.close();
    });
}

TEST_F(Rangos, CancelarYCajaDeCierre) {
    for (bool escape : {false, true}) {
        imp.Cancelado = false;
        Abre([&](QWidget& w) {
            QTest::keyClicks(Caja(w, 0), u"q"_s);
            if (escape)
                QTest::keyClick(&w, Qt::Key_Escape);
            else
                Pulsa(w, u"Command2"_s);
        });
        EXPECT_TRUE(imp.Cancelado);
        EXPECT_EQ(imp.ParamData, pd);
    }
    imp.Cancelado = false;
    Abre([](QWidget& w) {
        QTest::keyClicks(Caja(w, 0), u"q"_s);
        w.close();
    });
    EXPECT_FALSE(imp.Cancelado);
    EXPECT_EQ(imp.ParamData, pd);
    EXPECT_TRUE(pd->BusquedaIni.isEmpty());
    // A cancelled flag survives a later accept.
    imp.Cancelado = true;
    Abre([](QWidget& w) { Pulsa(w, u"Command1"_s); });
    EXPECT_TRUE(imp.Cancelado);
    EXPECT_NE(imp.ParamData, pd);
}

TEST_F(Rangos, SinParamDataOAmbienteFallaSinMostrarse) {
    imp.ParamData = nullptr;
    EXPECT_EQ(NumeroDeError([&] { imp.Llama(u"Rangos"_s, {ambiente, true}); }), err::kObjetoNoEstablecido);
    imp.ParamData = pd;
    EXPECT_EQ(NumeroDeError([&] { imp.Llama(u"Rangos"_s, {Variant::Nada(), true}); }), err::kObjetoNoEstablecido);
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(Rangos, LosMetodosInertesNoHacenNada) {
    EXPECT_TRUE(imp.Llama(u"RangoDeDatos"_s, {u"a"_s, u"b"_s, u"c"_s, u"d"_s, ambiente}).esVacio());
    EXPECT_TRUE(imp.Llama(u"Seleccion"_s, {u"a"_s, u"b"_s, Variant::Nada(), ambiente}).esVacio());
    EXPECT_TRUE(imp.Llama(u"RangoDeAlcance"_s, {u"a"_s, Variant::Nada()}).esVacio());
    EXPECT_EQ(imp.ParamData, pd);
    EXPECT_EQ(util->registro, QStringList());
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
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
        sucursales->Agrega(u" Sur "_s, std::make_shared<Conexion>());  // shadowed by the next
        sucursales->Agrega(u"Sur"_s, sur);
        ambiente->Sucursales = sucursales;
        ambiente->Empresa = u"Tienda"_s;
        ambiente->Parametros = std::make_shared<ObjetoGrabador>();
    }
    static QComboBox* Combo(QWidget& w) { return Control<QComboBox>(w, u"Combo1"_s); }
    static void Elige(QWidget& w, int fila) {
        QComboBox* c = Combo(w);
        c->setFocus();
        c->setCurrentIndex(fila);
        emit c->activated(fila);  // a click in the list
    }

    std::shared_ptr<Coleccion> sucursales = std::make_shared<Coleccion>();
    std::shared_ptr<Conexion> norte, sur;
};

TEST_F(CambioDeSucursal, ElegirUnaSucursalApuntaLasConsultasASuBase) {
    Abre([&](QWidget& w) {
        QComboBox* c = Combo(w);
        EXPECT_EQ(c->count(), 3);
        EXPECT_EQ(c->itemText(1), u" Sur "_s);  // listed as they stand
        Elige(w, 0);
        EXPECT_EQ(norte->State(), 1);
        auto* rama = dynamic_cast<Ambiente*>(imp.AmbienteSucursal.get());
        ASSERT_NE(rama, nullptr);
        EXPECT_EQ(rama->Conexion, norte);
        EXPECT_EQ(rama->NombreSucursal, u"Norte"_s);
        EXPECT_EQ(rama->Empresa, u"Tienda"_s);
        EXPECT_EQ(rama->Parametros, ambiente->Parametros);  // objects shared
        EXPECT_NE(rama, ambiente.get());
        for (int i = 0; i < 4; ++i) EXPECT_EQ(Lookup(w, i)->DataConnection, norte);
        QTest::keyClick(Caja(w, 0), Qt::Key_Down);
        ASSERT_NE(Lookup(w, 0)->Lista(), nullptr);
        EXPECT_EQ(Lookup(w, 0)->Lista()->model()->rowCount(), 3);
        EXPECT_EQ(Lookup(w, 0)->Lista()->model()->index(0, 0).data().toString(), u"N1"_s);
        QTest::keyClick(Lookup(w, 0)->Lista(), Qt::Key_Escape);

        // Typed with spaces: the trimmed names match, the last item wins, and
        // the name is kept as typed. An open connection is not opened again.
        c->setEditText(u"  Sur"_s);
        rama = dynamic_cast<Ambiente*>(imp.AmbienteSucursal.get());
        ASSERT_NE(rama, nullptr);
        EXPECT_EQ(rama->Conexion, sur);
        EXPECT_EQ(rama->NombreSucursal, u"  Sur"_s);
        EXPECT_EQ(Lookup(w, 3)->DataConnection, sur);
        // A partial name matches nothing: nothing changes, no message.
        c->setEditText(u"  Su"_s);
        EXPECT_EQ(imp.AmbienteSucursal.get(), rama);
        EXPECT_EQ(Lookup(w, 3)->DataConnection, sur);
        // The empty text is the main environment again.
        c->setEditText(QString());
        EXPECT_EQ(imp.AmbienteSucursal, nullptr);
        for (int i = 0; i < 4; ++i) EXPECT_EQ(Lookup(w, i)->DataConnection, matriz);
        Elige(w, 2);
        Pulsa(w, u"Command2"_s);
    });
    // Cancelled, and the branch environment stays.
    EXPECT_TRUE(imp.Cancelado);
    ASSERT_NE(imp.AmbienteSucursal, nullptr);
    EXPECT_EQ(imp.AmbienteSucursal->Lee(u"Conexion"_s).objeto(), sur);
    EXPECT_EQ(mensajes, QStringList());
    EXPECT_EQ(ambiente->NombreSucursal, u""_s);
}

TEST_F(CambioDeSucursal, SinListaDeSucursalesNadaCambia) {
    ambiente->Sucursales = nullptr;
    Abre([&](QWidget& w) {
        EXPECT_EQ(Combo(w)->count(), 0);
        Combo(w)->setEditText(u"Norte"_s);
        EXPECT_EQ(imp.AmbienteSucursal, nullptr);
        EXPECT_EQ(Lookup(w, 0)->DataConnection, matriz);
        w.close();
    });
}

// A branch whose database cannot be opened: one information message, the
// combo emptied and the main environment back.
TEST_F(CambioDeSucursal, UnaBaseQueNoAbreDaElMensaje823) {
    sucursales->Agrega(u"Rota"_s, [] {
        auto c = std::make_shared<Conexion>();
        c->ConnectionString(u"Data Source=/no/existe/rota.db"_s);
        return c;
    }());
    Abre([&](QWidget& w) {
        Elige(w, 0);
        ASSERT_NE(imp.AmbienteSucursal, nullptr);
        Elige(w, 3);
        EXPECT_EQ(Combo(w)->currentText(), u""_s);
        EXPECT_EQ(imp.AmbienteSucursal, nullptr);
        for (int i = 0; i < 4; ++i) EXPECT_EQ(Lookup(w, i)->DataConnection, matriz);
        Pulsa(w, u"Command1"_s);
    });
    EXPECT_EQ(mensajes, QStringList{u"No se pudo abrir la base de datos de la sucursal.|64|"_s});
    EXPECT_EQ(util->De(u"TextoDeMensaje"_s), QStringList{u"TextoDeMensaje(823,ambiente)"_s});
}

TEST(PostgresRangos, UnaSucursalConElServidorDetenidoDaElMensaje823) {
    if (Postgres().carpeta.isEmpty()) GTEST_SKIP() << Postgres().motivo.toStdString();
    QTemporaryDir base;
    QString carpeta;
    ASSERT_TRUE(ScriptPostgres({u"inicia"_s, base.path(), QString::number(QCoreApplication::applicationPid())},
                               &carpeta))
        << carpeta.toStdString();
    auto rama = std::make_shared<Conexion>();
    rama->ConnectionString(CadenaPostgres(carpeta));
    rama->Open();
    rama->Close();
    ASSERT_TRUE(ScriptPostgres({u"detiene"_s, base.path()}));

    QStringList mensajes;
    EstablecePresentadorDeMensajes([&](const QString& texto, int32_t estilo, const QString&) {
        mensajes << u"%1|%2"_s.arg(texto).arg(estilo);
        return respuesta::kAceptar;
    });
    auto sucursales = std::make_shared<Coleccion>();
    sucursales->Agrega(u"Centro"_s, rama);
    auto ambiente = AmbienteDeFebrero();
    ambiente->Sucursales = sucursales;
    Impresora imp;
    imp.ParamData = std::make_shared<ParamData>();
    AlMostrarse al(u"frmPMCombo"_s, [&](QWidget& w) {
        auto* c = Control<QComboBox>(w, u"Combo1"_s);
        c->setEditText(u"Centro"_s);
        EXPECT_EQ(c->currentText(), u""_s);
        EXPECT_EQ(imp.AmbienteSucursal, nullptr);
        w.close();
    });
    imp.Rangos(ambiente, true);
    EXPECT_EQ(mensajes, QStringList{u"No se pudo abrir la base de datos de la sucursal.|64"_s});
    EXPECT_EQ(rama->State(), 0);
}

}  // namespace
