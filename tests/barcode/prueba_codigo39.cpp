// Code 39 drawn bar by bar: the class and the Codigo39 method on recording
// targets, with the record, the message box and the errors. Pixels and zbar
// decodes of the drawn symbol are in prueba_barras_imagen.cpp.

#include "comun/prueba.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include "barcode/cls_barcode39.h"
#include "kaloimpresora/mensajes.h"

namespace {

// Published Code 39 widths (bar first, w wide, n narrow) of the characters
// these tests read back; anything else reads as "?".
const std::map<QString, QChar> kPublicados = {
    {u"nwnnwnwnn"_s, u'*'},
    {u"wnnwnnnnw"_s, u'1'},
    {u"nnwwnnnnw"_s, u'2'},
    {u"wnwwnnnnn"_s, u'3'},
    {u"nnnwwnnnw"_s, u'4'},
    {u"wnnwwnnnn"_s, u'5'},
    {u"nnwnwwnnn"_s, u'F'},
    {u"wnnnnwnnw"_s, u'A'},
    {u"nnwnnwnnw"_s, u'B'},
    {u"wnwnnwnnn"_s, u'C'},
    {u"nwwnnnwnn"_s, u' '},
};

// The font is a recorder whose calls also land, as "font.<member>", in the
// target's log, so the order of font changes and prints shows in one place.
class FuenteEnRegistro : public ObjetoGrabador {
public:
    explicit FuenteEnRegistro(ObjetoGrabador& d) : dueno(d) {}
    Variant Invoca(int32_t id, Llamada tipo, std::span<Variant> a) override {
        Variant r = ObjetoGrabador::Invoca(id, tipo, a);
        Llamado l = llamados.back();
        l.miembro = u"font."_s + l.miembro;
        dueno.llamados.push_back(l);
        return r;
    }
    ObjetoGrabador& dueno;
};

std::shared_ptr<ObjetoGrabador> Destino(QStringList soloEstos = {}) {
    auto d = std::make_shared<ObjetoGrabador>(soloEstos);
    auto f = std::make_shared<FuenteEnRegistro>(*d);
    f->Pon(u"Name"_s, u"Courier New"_s);
    f->Pon(u"Size"_s, 12.0f);
    f->Pon(u"Bold"_s, true);
    d->Pon(u"Font"_s, Variant(std::shared_ptr<Objeto>(f)));
    d->Pon(u"TextWidth"_s, 40.0);
    d->Pon(u"ScaleMode"_s, int16_t{3});
    return d;
}

struct Elemento {
    double x, y, ancho, alto;
    int32_t color;
};

std::vector<Elemento> Barras(const ObjetoGrabador& d) {
    std::vector<Elemento> r;
    for (const auto& l : d.De(u"Line"_s))
        if (CInt(l.argumentos[0]) == 46)
            r.push_back({CDbl(l.argumentos[1]), CDbl(l.argumentos[2]), CDbl(l.argumentos[3]),
                         CDbl(l.argumentos[4]), CLng(l.argumentos[5])});
    return r;
}

// Reads the symbol back from its bars, checking on the way what every cell
// must be: nine elements black and white in turn, a white gap, 16 narrows.
QString Lee39(const std::vector<Elemento>& e, double angosto) {
    EXPECT_EQ(e.size() % 10, 0u);
    QString texto;
    double x = e.empty() ? 0 : e.front().x;  // each element starts where the last one ended
    for (size_t c = 0; c + 10 <= e.size(); c += 10) {
        QString patron;
        double suma = 0;
        for (size_t i = 0; i < 10; ++i) {
            const Elemento& el = e[c + i];
            EXPECT_EQ(el.color, i % 2 == 0 && i < 9 ? 0 : 0xFFFFFF) << "elemento " << c + i;
            EXPECT_FLOAT_EQ(el.x, x);
            x += el.ancho;
            suma += el.ancho;
            if (i < 9) patron += el.ancho > 2 * angosto ? u'w' : u'n';
        }
        EXPECT_FLOAT_EQ(e[c + 9].ancho, angosto);
        EXPECT_FLOAT_EQ(suma, 16 * angosto);
        EXPECT_EQ(patron.count(u'w'), 3);
        texto += kPublicados.contains(patron) ? kPublicados.at(patron) : u'?';
    }
    return texto;
}

// "number source" of the error the body raised, "" if none: the source tells
// the class's procedures apart.
QString Falla(const std::function<void()>& cuerpo) {
    QString origen;
    const int32_t numero = NumeroDeError(cuerpo, nullptr, &origen);
    return numero ? QString::number(numero) + u' ' + origen : QString();
}

TEST(BarCode39, AjustesCaracteresYDigitoVerificador) {
    // Narrow and height given, and kept; the limits go back through the argument.
    const std::tuple<double, double, int16_t, int16_t> casos[] = {
        {10.9999, 11, 299, 300},
        {11.0001, 11.0001, 300, 300},
        {20.5, 20.5, 1000, 1000},
    };
    for (const auto& [dado, guardado, altoDado, altoGuardado] : casos) {
        clsBarCode39 b;
        Moneda angosto = CCur(dado);
        b.NarrowX(angosto);
        int16_t alto = altoDado;
        b.BarcodeHeight(alto);
        EXPECT_EQ(angosto, CCur(guardado));
        EXPECT_EQ(b.NarrowX(), CCur(guardado));
        EXPECT_EQ(alto, altoGuardado);
        EXPECT_EQ(b.TotalHeight(), altoGuardado + 525);
    }
    clsBarCode39 b;
    int16_t alto = 32243;
    b.BarcodeHeight(alto);
    EXPECT_EQ(NumeroDeError([&] { b.TotalHeight(); }), err::kDesbordamiento);
    // A character without a pattern, and one beyond the pattern table.
    for (const QString& malo : {u"A_B"_s, u"Ñ"_s}) {
        b.Barcode(malo);
        EXPECT_EQ(b.ErrNumber(), 5970) << malo.toStdString();
        EXPECT_EQ(b.Barcode(), u"*12345*"_s);
    }
    b.Barcode(u"A*B -.$/+%"_s);
    EXPECT_EQ(b.ErrNumber(), 0);
    EXPECT_EQ(b.Barcode(), u"A*B -.$/+%"_s);
    EXPECT_EQ(b.ErrDescription(), u"Invalid Charater in the Barcode parameter."_s);
    b.RaiseError(true);
    EXPECT_EQ(Falla([&] { b.Barcode(u"ab"_s); }), u"5970 clsBarcode39.Barcode"_s);

    // The modulo-43 check character.
    const std::tuple<QString, QString, int32_t> digitos[] = {
        {u""_s, u"F"_s, 0},       // the stored *12345*: 15
        {u"CODE39"_s, u"W"_s, 0}, // 75 mod 43 = 32
        {u"*Z8*"_s, u"0"_s, 0},   // 43
        {u"%%"_s, u"+"_s, 0},     // 84 mod 43 = 41
        {u"1a"_s, u"1"_s, 5970},  // no value, adds nothing
        {u"a1"_s, u"1"_s, 0}};    // a valid last character clears it
    clsBarCode39 v;
    for (const auto& [codigo, digito, error] : digitos) {
        EXPECT_EQ(v.FindCheckDigit(codigo), digito) << codigo.toStdString();
        EXPECT_EQ(v.ErrNumber(), error) << codigo.toStdString();
    }
    EXPECT_EQ(NumeroDeError([&] { v.FindCheckDigit(QString(781, u'%')); }), err::kDesbordamiento);
    v.RaiseError(true);
    EXPECT_EQ(Falla([&] { v.FindCheckDigit(u"a"_s); }), u"5970 clsBarcode39.FindCode"_s);
}

TEST(BarCode39, CeldasDeDieciseisAngostosYMarcoDelTamanoTotal) {
    const std::tuple<QString, QString, bool, int> casos[] = {
        {u"ABC"_s, u"*ABC*"_s, false, 20},
        {u"*AB"_s, u"*AB*"_s, true, 11},
        {u"A*B"_s, u"*A*B*"_s, true, 15},
        {u""_s, u"*"_s, true, 15},
    };
    for (const auto& [barcode, dibujado, marco, angosto] : casos) {
        SCOPED_TRACE(barcode.toStdString());
        auto d = Destino();
        clsBarCode39 b;
        b.Barcode(barcode);
        b.ShowBox(marco);
        b.CurrentX(1000);
        b.CurrentY(2000);
        Moneda n = CCur(angosto);
        b.NarrowX(n);
        const int32_t anchoAntes = b.TotalWidth();
        b.Draw(d);
        EXPECT_EQ(b.ErrNumber(), 0);
        EXPECT_EQ(b.Barcode(), dibujado);
        EXPECT_EQ(anchoAntes, 16 * angosto * barcode.size() + 300);
        EXPECT_EQ(b.TotalWidth(), 16 * angosto * dibujado.size() + 300);
        const auto e = Barras(*d);
        ASSERT_EQ(Lee39(e, angosto), dibujado);
        QString legible;  // the single characters printed under the bars
        for (const auto& l : d->De(u"Print"_s))
            if (l.argumentos[0].texto().size() == 1) legible += l.argumentos[0].texto();
        EXPECT_EQ(legible, dibujado);
        // 150 inside the frame's corner, with or without the frame.
        EXPECT_EQ(e.front().x, 1150);
        for (const auto& el : e) EXPECT_TRUE(el.y == 2150 && el.alto == 600);
        const QStringList lineas = d->Registro().filter(u"Llama line("_s);
        ASSERT_EQ(lineas.size(), e.size() + (marco ? 1 : 0));
        if (marco) {
            EXPECT_EQ(lineas.first(), u"Llama line(30,1000,2000,%1,%2,0)"_s.arg(b.TotalWidth()).arg(b.TotalHeight()));
        }
    }
}

TEST(BarCode39, TextosCentradosEnSuCeldaYFuenteAlTerminar) {
    auto d = Destino();
    clsBarCode39 b;
    b.Barcode(u"1"_s);
    b.Data1(u"uno"_s);
    b.Data2(u"dos"_s);
    b.Data3(u"tres"_s);
    d->Pon(u"TextWidth"_s, 41.5);  // 240 - 41.5 rounds to 198 (ties to even): 99 in
    b.Draw(d);

    const QString si = CStr(true), no = CStr(false);
    QStringList esperado = {u"Lee font.name"_s, u"Lee font.size"_s,
                            u"Asigna font.name=Arial"_s, u"Asigna font.size=6"_s,
                            u"Asigna currentx=249"_s, u"Asigna currenty=940"_s, u"Llama print(uno,"_s + si + u')',
                            u"Asigna currentx=249"_s, u"Asigna currenty=-10"_s, u"Llama print(dos,"_s + si + u')',
                            u"Asigna font.name=Arial"_s, u"Asigna font.size=10"_s, u"Asigna font.bold="_s + si,
                            u"Asigna currentx=349"_s, u"Asigna currenty=-50"_s, u"Llama print(tres,"_s + si + u')',
                            u"Asigna font.name=Tahoma"_s, u"Asigna font.size=8"_s, u"Asigna font.bold="_s + no};
    for (int celda : {150, 390, 630})
        esperado << u"Asigna currentx="_s + QString::number(celda + 99) << u"Asigna currenty=780"_s
                 << u"Llama print("_s + b.Barcode()[(celda - 150) / 240] + u',' + si + u')';
    esperado << u"Asigna font.name=Courier New"_s << u"Asigna font.size=12"_s;
    QStringList visto = d->Registro().filter(QRegularExpression(u"font\\.|currentx|currenty|print"_s));
    EXPECT_EQ(visto, esperado);

    // The halving truncates toward zero after rounding.
    for (auto [ancho, corrimiento] : {
             std::pair(40.5, 100),
             std::pair(243.0, -1),
         }) {
        auto otro = Destino();
        otro->Pon(u"TextWidth"_s, ancho);
        b.Draw(otro);
        EXPECT_EQ(CDbl(otro->De(u"CurrentX"_s).front().argumentos[0]), 150 + corrimiento) << ancho;
    }
}

TEST(BarCode39, UnDestinoQueFallaDa438) {
    const std::tuple<const char*, int32_t, size_t, QString> casos[] = {
        {"TextWidth", 0, 1, u"Arial"_s},
        {"Font", 0, 1, u"Courier New"_s},
        {"Line", 0, 0, u"Courier New"_s},
        {"", INT32_MAX - 100, 0, u"Courier New"_s}};  // the position overflows
    for (bool lanza : {false, true})
        for (const auto& [falta, x, lineas, fuente] : casos) {
            SCOPED_TRACE(falta);
            QStringList miembros = {u"Line"_s, u"Font"_s, u"TextWidth"_s, u"CurrentX"_s, u"CurrentY"_s, u"Print"_s};
            miembros.removeAll(QString::fromLatin1(falta));
            auto d = Destino(miembros);
            clsBarCode39 b;
            b.CurrentX(x);
            b.RaiseError(lanza);
            EXPECT_EQ(Falla([&] { b.Draw(d); }), lanza ? u"438 clsBarcode39.Barcode"_s : QString());
            EXPECT_EQ(b.ErrNumber(), 438);
            EXPECT_EQ(b.ErrDescription(), u"Invalid control in use. Support only picturebox, form, and printer."_s);
            EXPECT_EQ(d->De(u"Line"_s).size(), lineas);
            // Stopped at once: the font is not put back.
            auto f = std::static_pointer_cast<ObjetoGrabador>(d->Valor(u"Font"_s).objeto());
            EXPECT_EQ(f->Valor(u"Name"_s).texto(), fuente);
        }
    clsBarCode39 b;
    b.Draw(nullptr);
    EXPECT_EQ(b.ErrNumber(), 438);
}

class Codigo39 : public prueba::ConImpresoraYVistaGrabadoras<> {
protected:
    void SetUp() override {
        ConImpresoraYVistaGrabadoras::SetUp();
        EstablecePresentadorDeMensajes([this](const QString& t, int32_t e, const QString& ti) {
            mensajes << t + u'|' + QString::number(e) + u'|' + ti;
            return 1;
        });
    }
    std::shared_ptr<ObjetoGrabador> NuevoGrabador() override { return Destino(); }

    QStringList mensajes;
};

TEST_F(Codigo39, RegistraSinData3YDibujaloOAvisaDeUnCaracterNoValido) {
    imp.IniciaDocumento();
    vista->llamados.clear();
    imp.Codigo39(0, 0, 15, 600, u"abc"_s, true);
    EXPECT_EQ(mensajes, QStringList{u"Error: It contain invalid barcode charater|16|Error"_s});
    EXPECT_TRUE(vista->llamados.empty());
    imp.Codigo39(1440, 720.5, 15, 600, u"12345"_s, true, true, u"uno \"1\""_s, u"dos"_s, u"tres"_s);

    EXPECT_EQ(Comandos(imp.DB).mid(1),
              (QStringList{u"Codigo39 Fn(\"0\"),Fn(\"0\"),Fn(\"15\"),Fn(\"600\"),\"abc\",True,False,\"\",\"\"\r\n"_s,
                           u"Codigo39 Fn(\"1440\"),Fn(\"720.5\"),Fn(\"15\"),Fn(\"600\"),\"12345\",True,True,"
                           u"\"uno ''1''\",\"dos\"\r\n"_s}));
    EXPECT_EQ(vista->De(u"Print"_s)[2].argumentos[0].texto(), u"tres"_s);
    // The check character goes after the stop star of a message that has its own.
    vista->llamados.clear();
    imp.Codigo39(0, 0, 15, 600, u"*12345*"_s, false, 1);
    EXPECT_EQ(Lee39(Barras(*vista), 15), u"*12345*F*"_s);
}

TEST_F(Codigo39, EnLaImpresoraConLimitesYSinDesplazamientos) {
    prueba::ConLocal local("en_US");
    imp.Pantalla = false;
    imp.IniciaDocumento();
    imp.Codigo39(100.5, u"101.5"_s, 5, 100, u"1"_s, -1);
    const auto e = Barras(*impresora);
    EXPECT_EQ(Lee39(e, 11), u"*1*"_s);
    EXPECT_EQ(e.front().alto, 300);
    // Halves to even, and the printer's page offsets are not subtracted.
    EXPECT_EQ(impresora->Registro().filter(u"Llama line("_s).first(),
              u"Llama line(30,100,102,%1,825,0)"_s.arg(3 * 16 * 11 + 300));
    // Drawn in twips: after the switch to twips and before the one switch back to inches.
    const QStringList escala = impresora->Registro().filter(QRegularExpression(u"^Asigna scalemode|^Llama line"_s));
    const qsizetype twips = escala.lastIndexOf(u"Asigna scalemode=1"_s);
    EXPECT_TRUE(escala.value(twips + 1).startsWith(u"Llama line"_s));
    EXPECT_EQ(escala.mid(twips).filter(u"scalemode"_s),
              (QStringList{u"Asigna scalemode=1"_s, u"Asigna scalemode=5"_s}));
    EXPECT_TRUE(vista->De(u"Line"_s).empty());
}

TEST_F(Codigo39, ErroresAntesYDespuesDeRegistrar) {
    modulo4::Estado().objDestino = vista;
    const std::tuple<const char*, std::function<void()>, int32_t, int32_t> casos[] = {
        {"x no numerica", [&] { imp.Codigo39(u"x"_s, 0, 15, 600, u"1"_s); }, err::kTiposNoCoinciden, 0},
        {"caja nula", [&] { imp.Codigo39(0, 0, 15, 600, u"1"_s, Variant::Nulo()); }, err::kUsoNoValidoDeNull, 1},
        {"alto enorme", [&] { imp.Codigo39(0, 0, 15, 40000, u"1"_s); }, err::kDesbordamiento, 1},
        {"sin destino", [&] { modulo4::Estado().objDestino = nullptr; imp.Codigo39(0, 0, 15, 600, u"1"_s); },
         err::kObjetoNoEstablecido, 1},
    };
    for (const auto& [nombre, llamada, error, registrados] : casos) {
        const int32_t antes = imp.nLinea;
        EXPECT_EQ(NumeroDeError(llamada), error) << nombre;
        EXPECT_EQ(imp.nLinea - antes, registrados) << nombre;
    }
    EXPECT_TRUE(Barras(*vista).empty());

    // A target that cannot draw is silent, and still ends in inches.
    auto mudo = Destino({u"ScaleMode"_s, u"Line"_s});
    modulo4::Estado().objDestino = mudo;
    EXPECT_EQ(NumeroDeError([&] { imp.Codigo39(0, 0, 15, 600, u"1"_s, true); }), 0);
    EXPECT_EQ(CInt(mudo->Valor(u"ScaleMode"_s)), 5);
}

// The real box, answered by pressing one of its buttons from its own event
// loop. The timer dies with its case, and a box that cannot be found or lacks
// the button is ended by force: a fault fails the test instead of hanging it.
TEST(Codigo39MsgBox, LaCajaRealDevuelveElBotonPulsado) {
    AseguraAplicacion();
    EstablecePresentadorDeMensajes({});  // the real box, not the suite's guard
    const std::tuple<int32_t, QString, int32_t, QMessageBox::Icon, QString> casos[] = {
        {16, u"Aceptar"_s, 1, QMessageBox::Critical, u"Aceptar"_s},
        {4 | 32 | 256, u"No"_s, 7, QMessageBox::Question, u"No"_s},
        {1 | 48, u"Cancelar"_s, 2, QMessageBox::Warning, u"Aceptar"_s}};
    for (const auto& [estilo, boton, respuesta, icono, predeterminado] : casos) {
        QStringList visto;
        QTimer reloj;
        int esperas = 0;
        QObject::connect(&reloj, &QTimer::timeout, [&] {
            auto* caja = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!caja && ++esperas < 500) return;
            reloj.stop();
            if (!caja) {
                ADD_FAILURE() << "sin caja modal";
                for (auto* w : QApplication::topLevelWidgets())
                    if (auto* d = qobject_cast<QDialog*>(w)) d->done(0);
                return;
            }
            visto << caja->windowTitle() << caja->text()
                  << (caja->defaultButton() ? caja->defaultButton()->text() : QString());
            EXPECT_EQ(caja->icon(), icono);
            for (auto* b : caja->buttons())
                if (b->text() == boton) return b->click();
            ADD_FAILURE() << "sin el botón " << boton.toStdString();
            caja->done(0);
        });
        reloj.start(10);
        EXPECT_EQ(MsgBox(u"¿Seguro?"_s, estilo, u"Título"_s), respuesta);
        EXPECT_EQ(visto, (QStringList{u"Título"_s, u"¿Seguro?"_s, predeterminado}));
    }
}

}  // namespace
