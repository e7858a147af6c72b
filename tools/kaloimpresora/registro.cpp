#include "registro.h"

#include <dlfcn.h>

#include <QFileInfo>
#include <cstdio>

#include "automation/componentes.h"
#include "kaloimpresora/kaloimpresora.h"
#include "ordenes.h"

namespace kalo::herramienta {

using namespace Qt::StringLiterals;

namespace {

void Escribe(FILE* f, const QString& texto) {
    const QByteArray b = texto.toLocal8Bit();
    std::fwrite(b.constData(), 1, size_t(b.size()), f);
}

// The library installed beside this program, else the one built with it.
QString BibliotecaPredeterminada() {
    const QString programa = QFileInfo(u"/proc/self/exe"_s).canonicalFilePath();
    const QString instalada = QFileInfo(programa).absolutePath() + u"/../" KALO_DIR_BIBLIOTECAS
                              "/libkaloimpresora.so." KALO_VERSION_MAYOR ""_s;
    if (QFileInfo::exists(instalada)) return QFileInfo(instalada).absoluteFilePath();
    return u"" KALO_BIBLIOTECA_CONSTRUIDA ""_s;
}

}  // namespace

QString AyudaDelRegistro() {
    return uR"(
Registro de componentes:
  registra [BIBLIOTECA]        Registra KaloImpresora.Impresora y .ParamData con la
                               ruta de la biblioteca (la instalada junto a este
                               programa, si no se indica otra).
  desregistra [BIBLIOTECA]     Borra ese registro.
  El registro está en ~/.local/share/kaloimpresora/componentes ($XDG_DATA_HOME), o
  en <prefijo>/share/kaloimpresora/componentes si root registra una biblioteca
  instalada. Códigos de salida: 0 bien, 1 uso, 2 la biblioteca no se pudo cargar,
  4 no se pudo escribir o borrar el registro.
)"_s;
}

int Registra(const QStringList& args, bool registrar) {
    const QString orden = registrar ? u"registra"_s : u"desregistra"_s;
    if (args.size() > 1 || (!args.isEmpty() && args.first().startsWith(u"--"_s))) {
        Escribe(stderr, u"kaloimpresora: «%1» lleva a lo más una BIBLIOTECA\n"_s.arg(orden));
        return salida::kUso;
    }
    const QString ruta = QFileInfo(args.isEmpty() ? BibliotecaPredeterminada() : args.first()).absoluteFilePath();
    void* biblioteca = dlopen(QFile::encodeName(ruta).constData(), RTLD_NOW | RTLD_LOCAL);
    void* entrada = biblioteca ? dlsym(biblioteca, registrar ? "DllRegisterServer" : "DllUnregisterServer") : nullptr;
    if (!entrada) {
        Escribe(stderr, u"kaloimpresora: no se pudo cargar %1: %2\n"_s.arg(ruta, QString::fromLocal8Bit(dlerror())));
        return salida::kArchivo;
    }
    const auto llama = reinterpret_cast<KaloResultado (*)()>(entrada);
    const KaloResultado r = llama();
    const QString carpeta = componentes::CarpetaParaEscribir(ruta);
    if (r != KALO_S_OK) {
        Escribe(stderr, u"kaloimpresora: no se pudo %1 el registro en %2 (0x%3)\n"_s.arg(
                            registrar ? u"escribir"_s : u"borrar"_s, carpeta)
                            .arg(uint32_t(r), 8, 16, QChar(u'0')));
        return salida::kDestino;
    }
    Escribe(stdout, (registrar ? u"Registrada %1 en %2\n"_s : u"Desregistrada %1 de %2\n"_s).arg(ruta, carpeta));
    return salida::kBien;
}

}  // namespace kalo::herramienta
