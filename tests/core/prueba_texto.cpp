// Text and font methods: what they record and what they ask of the target.

#include "comun/prueba.h"

namespace {

using Texto = prueba::ConImpresoraYVistaGrabadoras<>;

TEST_F(Texto, SayRegistraLaRejillaYEscribeElTextoSinCambiar) {
    imp.IniciaDocumento();
    imp.Say(1, 2, u"a\"b'c"_s);
    // nrow and ncol in the 66 x 80 grid: 1 / (11 / 66) and 2 / (8.5 / 80).
    EXPECT_EQ(Consulta(imp.DB, "SELECT source, nrow, ncol, contenido FROM source WHERE row = 2"),
              (std::vector<Fila>{
                  {u"Say Fn(\"1\"),Fn(\"2\"),\"a''b'c\"\r\n"_s, u"6.0"_s, u"18.8235294117647"_s, u"a\"b'c"_s}}));
    EXPECT_EQ(vista->Registro().mid(vista->Registro().size() - 3),
              (QStringList{u"Asigna currentx=2"_s, u"Asigna currenty=1"_s, u"Llama print(a\"b'c)"_s}));
}

TEST_F(Texto, RenglonYColumnaDeLaRejilla) {
    // Value, row and column in inches.
    const std::tuple<Variant, double, double> casos[] = {
        {Variant(), 0, 0}, {6, 1, 0.6375}, {80, 80.0 / 6, 8.5}, {0.5, 0.5 / 6, 0.053125}, {u"12"_s, 2, 1.275}};
    for (const auto& [valor, renglon, columna] : casos) {
        EXPECT_DOUBLE_EQ(CDbl(imp.Row(valor)), renglon);
        EXPECT_DOUBLE_EQ(CDbl(imp.Col(valor)), columna);
    }
    EXPECT_EQ(NumeroDeError([&] { imp.Row(u"x"_s); }), 13);
    EXPECT_EQ(imp.nLinea, 0);
}

TEST_F(Texto, LosErroresDeConversionLleganAntesDeRegistrar) {
    imp.IniciaDocumento();
    imp.nRow = 0;
    EXPECT_EQ(NumeroDeError([&] { imp.Say(1, 1, u"x"_s); }), 11);
    EXPECT_EQ(NumeroDeError([&] { imp.Row(1); }), 11);
    EXPECT_EQ(NumeroDeError([&] { imp.EstableceFuente(u"Arial"_s, u"grande"_s); }), 13);
    EXPECT_EQ(NumeroDeError([&] { imp.Say(u"arriba"_s, 1, u"x"_s); }), 13);
    EXPECT_EQ(NumeroDeError([&] { imp.ColorDeFuente(Variant::Nulo()); }), 94);
    EXPECT_EQ(imp.nLinea, 1);
    imp.CurrentY(2);
    EXPECT_EQ(imp.nLinea, 2);
    EXPECT_EQ(Comandos(imp.DB).size(), 2);
}

// The message itself reaches the target, not its text.
TEST_F(Texto, PorNombreComoLoLlamaElAnfitrion) {
    imp.IniciaDocumento();
    imp.Llama(u"say"_s, {imp.Llama(u"Row"_s, {3}), imp.Llama(u"Col"_s, {10}), 1234});
    EXPECT_TRUE(vista->Valor(u"CurrentY"_s).identico(Variant(0.5)));
    EXPECT_TRUE(vista->Valor(u"CurrentX"_s).identico(Variant(1.0625)));
    EXPECT_TRUE(vista->De(u"Print"_s).back().argumentos[0].identico(Variant(1234)));
    EXPECT_EQ(Comandos(imp.DB).last(), u"Say Fn(\"0.5\"),Fn(\"1.0625\"),\"1234\"\r\n"_s);
}

}  // namespace
