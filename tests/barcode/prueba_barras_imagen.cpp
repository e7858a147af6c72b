// Picture barcodes: what is recorded, what the utility object is asked, and
// what reaches the target.

#include <gtest/gtest.h>

#include "comun/impresora_con_grabadores.h"
#include "comun/lectura_de_reporte.h"
#include "comun/utilerias_de_prueba.h"
#include "target/imagen.h"

using namespace kalo;
using namespace Qt::StringLiterals;
using kalo::prueba::NumeroDeError;

namespace {

// Answers every barcode with the same picture and notes what it was asked.
class CodificadorDePrueba : public UtileriasPredeterminadas {
public:
    std::shared_ptr<Objeto> ImagenBar128(int16_t& alto, QString& datos, bool& hr) override {
        return Anota(u"128"_s, alto, datos, false, hr);
    }
    std::shared_ptr<Objeto> ImagenBar3de9(int16_t& alto, QString& datos, bool& suma, bool& hr) override {
        return Anota(u"39"_s, alto, datos, suma, hr);
    }
    std::shared_ptr<Objeto> ImagenBarEAN13(int16_t& alto, QString& datos, bool& hr) override {
        return Anota(u"EAN13"_s, alto, datos, false, hr);
    }
    std::shared_ptr<Objeto> ImagenBarEAN8(int16_t& alto, QString& datos, bool& hr) override {
        return Anota(u"EAN8"_s, alto, datos, false, hr);
    }
    std::shared_ptr<Objeto> Anota(const QString& tipo, int16_t alto, const QString& datos, bool suma, bool hr) {
        pedido = tipo + u'|' + QString::number(alto) + u'|' + datos + u'|' + (suma ? u"S"_s : u"-"_s) +
                 (hr ? u"H"_s : u"-"_s);
        if (falla) Lanza(err::kLlamadaNoValida);
        return imagen;
    }
    QString pedido;
    bool falla = false;
    std::shared_ptr<Imagen> imagen = std::make_shared<Imagen>(QImage(4, 2, QImage::Format_RGB32));
};

class BarrasComoImagen : public prueba::ConImpresoraYVistaGrabadoras<> {
protected:
    void SetUp() override {
        ConImpresoraYVistaGrabadoras::SetUp();
        SustituyeUtilerias(codificador);
        imp.IniciaDocumento();
    }
    QString UltimoComando() {
        const QStringList comandos = prueba::Comandos(imp.DB);
        return comandos.isEmpty() ? QString() : comandos.last();
    }

    std::shared_ptr<CodificadorDePrueba> codificador = std::make_shared<CodificadorDePrueba>();
};

TEST_F(BarrasComoImagen, ComandosYPedidosConSusValoresPorOmision) {
    // Arguments by name, the command recorded, what the encoder is asked.
    std::tuple<std::vector<Variant>, const char*, const char*> casos[] = {
        {{int16_t{40}, "AB\"1", 1, 2, 3, 0.5},
         "Bar128 Fn(\"40\"),\"AB\"1\",Fn(\"1\"),Fn(\"2\"),Fn(\"3\"),Fn(\"0.5\"),True", "128|40|AB\"1|-H"},
        {{60, "CODE", 0, 0, 2, 1},
         "Bar3de9 Fn(\"60\"),\"CODE\",Fn(\"0\"),Fn(\"0\"),Fn(\"2\"),Fn(\"1\"),False,True", "39|60|CODE|-H"},
        {{60, "CODE", 0, 0, 2, 1, true, false},
         "Bar3de9 Fn(\"60\"),\"CODE\",Fn(\"0\"),Fn(\"0\"),Fn(\"2\"),Fn(\"1\"),True,False", "39|60|CODE|S-"},
        {{50, "750100000001", 1, 1, 2, 1, false},
         "BarEAN13 Fn(\"50\"),\"750100000001\",Fn(\"1\"),Fn(\"1\"),Fn(\"2\"),Fn(\"1\"),False",
         "EAN13|50|750100000001|--"},
        {{50, "1234567", 1, 1, 2, 1},
         "BarEAN8 Fn(\"50\"),\"1234567\",Fn(\"1\"),Fn(\"1\"),Fn(\"2\"),Fn(\"1\"),True", "EAN8|50|1234567|-H"},
    };
    for (auto& [argumentos, comando, pedido] : casos) {
        SCOPED_TRACE(comando);
        imp.InvocaPorNombre(QString::fromUtf8(comando).section(u' ', 0, 0), Llamada::Metodo, argumentos);
        EXPECT_EQ(UltimoComando(), QString::fromUtf8(comando) + u"\r\n"_s);
        EXPECT_EQ(codificador->pedido, QString::fromUtf8(pedido));
        const auto pintura = vista->De(u"PaintPicture"_s).back().argumentos;
        ASSERT_EQ(pintura.size(), 5u);
        EXPECT_EQ(pintura[0].objeto(), codificador->imagen);
        EXPECT_TRUE(pintura[3].identico(argumentos[4]));
    }
}

// Nothing fails once the command is recorded; a rectangle that is not a
// number fails before.
TEST_F(BarrasComoImagen, UnCodificadorQueFallaNoPintaNiAvisa) {
    codificador->falla = true;
    EXPECT_NO_THROW(imp.Bar128(40, u"x"_s, 1, 1, 2, 1));
    EXPECT_EQ(vista->De(u"PaintPicture"_s).back().argumentos[0].objeto(), nullptr);
    EXPECT_TRUE(UltimoComando().startsWith(u"Bar128 "_s));
    codificador->pedido.clear();
    const int32_t antes = imp.nLinea;
    EXPECT_EQ(NumeroDeError([&] { imp.BarEAN8(40, u"1234567"_s, u"izq"_s, 1, 2, 1); }), 13);
    EXPECT_EQ(imp.nLinea, antes);
    EXPECT_TRUE(codificador->pedido.isEmpty());
}

}  // namespace
