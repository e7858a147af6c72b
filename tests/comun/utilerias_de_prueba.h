#pragma once

// Helpers shared by the tests.

#include <QFile>
#include <QLocale>
#include <gtest/gtest.h>
#include <vector>

#include "kaloimpresora/automatizacion.h"
#include "kaloimpresora/utilerias.h"

namespace kalo::prueba {

// Runs the body and reports the automation error number it raised, or 0;
// with descripcion or origen, the error's description or source too.
template <class F>
int32_t NumeroDeError(F&& cuerpo, QString* descripcion = nullptr, QString* origen = nullptr) {
    try {
        cuerpo();
    } catch (const ErrorDeAutomatizacion& e) {
        if (descripcion) *descripcion = e.descripcion();
        if (origen) *origen = e.origen();
        return e.numero();
    }
    return 0;
}

// Values alike one by one, each of the same type and contents; Describe shows them.
inline bool Identicos(const std::vector<Variant>& a, const std::vector<Variant>& b) {
    return std::ranges::equal(a, b, [](const Variant& x, const Variant& y) { return x.identico(y); });
}

inline std::string Describe(const std::vector<Variant>& v) {
    QStringList partes;
    for (const auto& a : v) partes << QString::number(static_cast<int>(a.tipo())) + u':' + CStr(a);
    return partes.join(QStringLiteral(" | ")).toStdString();
}

// Writes a file whole and gives back its path.
inline QString Escribe(const QString& ruta, const QByteArray& contenido) {
    QFile f(ruta);
    EXPECT_TRUE(f.open(QIODevice::WriteOnly)) << ruta.toStdString();
    f.write(contenido);
    return ruta;
}

// A spool file and the log files SQLite keeps beside it.
inline void BorraReporte(const QString& archivo) {
    if (archivo.isEmpty()) return;
    for (const char* s : {"", "-wal", "-shm"}) QFile::remove(archivo + QString::fromLatin1(s));
}

// One late-bound call, for tables of them: "=Name" assigns the first argument.
struct Paso {
    QString miembro;
    std::vector<Variant> argumentos;
};

inline Variant Aplica(Objeto& o, Paso p) {
    if (p.miembro.startsWith(u'=')) {
        o.Asigna(p.miembro.mid(1), p.argumentos.at(0));
        return {};
    }
    return o.InvocaPorNombre(p.miembro, Llamada::Metodo, p.argumentos);
}

// An object whose default member reads as a fixed value.
class ObjetoConValor : public Objeto {
public:
    explicit ObjetoConValor(Variant valor) : valor_(std::move(valor)) {}
    Variant Invoca(int32_t dispid, Llamada tipo, std::span<Variant> argumentos) override {
        if (dispid == kDispidValor && tipo == Llamada::LeePropiedad) return valor_;
        return Objeto::Invoca(dispid, tipo, argumentos);
    }

private:
    Variant valor_;
};

// Switches the user's locale for the life of the object.
class ConLocal {
public:
    explicit ConLocal(const char* nombre) { EstableceLocalDelUsuario(QLocale(QString::fromLatin1(nombre))); }
    ~ConLocal() { EstableceLocalDelUsuario(std::nullopt); }
};

// Registers a host's class for the life of the object.
class ConClase {
public:
    ConClase(QString id, FabricaDeObjetos fabrica) : id_(std::move(id)) { RegistraClase(id_, std::move(fabrica)); }
    ~ConClase() { RegistraClase(id_, {}); }

private:
    QString id_;
};

}  // namespace kalo::prueba
