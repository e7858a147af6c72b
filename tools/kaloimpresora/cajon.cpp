#include "cajon.h"

#include <cstdio>
#include <iterator>
#include <optional>

#include "ordenes.h"
#include "paper/cajon.h"

namespace kalo::herramienta {

using namespace Qt::StringLiterals;

namespace {

// The usual kick of a receipt printer's drawer: ESC p, pin 2, 50 ms on, 500 ms off.
const char16_t kCodigoPredeterminado[] = u"\x1bp\x0000\x0019\x00fa";

void Escribe(FILE* f, const QString& texto) {
    const QByteArray b = texto.toLocal8Bit();
    std::fwrite(b.constData(), 1, b.size(), f);
}

int Falla(int codigo, const QString& mensaje) {
    Escribe(stderr, u"kaloimpresora: "_s + mensaje + u'\n');
    return codigo;
}

// \e, \r, \n, \t, \\ and \xHH (the byte HH) in a code typed on a terminal.
std::optional<QString> LeeCodigo(const QString& texto) {
    QString codigo;
    for (qsizetype i = 0; i < texto.size(); ++i) {
        if (texto[i] != u'\\') {
            codigo += texto[i];
            continue;
        }
        const QChar c = ++i < texto.size() ? texto[i] : QChar();
        if (c == u'x') {
            bool ok = false;
            const int byte = texto.mid(i + 1, 2).toInt(&ok, 16);
            if (!ok || texto.mid(i + 1, 2).size() != 2) return std::nullopt;
            codigo += cajon::CaracterDe1252(static_cast<unsigned char>(byte));
            i += 2;
            continue;
        }
        const QString escapes = u"e\x1br\rn\nt\t\\\\"_s;
        const qsizetype j = escapes.indexOf(c);
        if (c.isNull() || j < 0 || j % 2 != 0) return std::nullopt;
        codigo += escapes[j + 1];
    }
    return codigo;
}

}  // namespace

QString AyudaDelCajon() {
    return uR"(
«cajon PUERTO» escribe el código y luego CR LF, sin esperar más de 2 segundos.
PUERTO es un dispositivo (/dev/usb/lp0, /dev/ttyS0, /dev/ttyUSB0), un archivo,
un FIFO, LPT1 a LPT9 o PRN (la primera impresora paralela o USB presente),
COM1, COM2... (/dev/ttyS0, /dev/ttyS1...), o una cola del servidor de impresión
(«Caja» o «\\servidor\Caja»), que lo recibe como trabajo en bruto. En --codigo
valen \e (ESC), \r, \n, \t, \\ y \xHH (el byte HH); sin --codigo se envía
\ep\x00\x19\xfa.

Códigos de salida de «cajon»:
  0   enviado
  1   orden u opción mal escrita
  10  no existe el dispositivo, la carpeta o la cola
  11  permiso denegado (el usuario debe pertenecer al grupo que se indica)
  12  el dispositivo está ocupado por otro programa
  13  nadie recibió los bytes en 2 segundos
  14  otro error del dispositivo o del servidor de impresión
)"_s;
}

int Cajon(const QStringList& argumentos) {
    QString puerto;
    std::optional<QString> codigo = QString::fromUtf16(kCodigoPredeterminado, std::size(kCodigoPredeterminado) - 1);
    for (qsizetype i = 0; i < argumentos.size(); ++i) {
        if (argumentos[i] == u"--codigo"_s && i + 1 < argumentos.size()) {
            codigo = LeeCodigo(argumentos[++i]);
            if (!codigo) return Falla(salida::kUso, u"Código no válido: %1"_s.arg(argumentos[i]));
        } else if (argumentos[i].startsWith(u"--"_s) || !puerto.isEmpty()) {
            return Falla(salida::kUso, u"Uso: kaloimpresora cajon PUERTO [--codigo TEXTO]"_s);
        } else {
            puerto = argumentos[i];
        }
    }
    if (puerto.isEmpty()) return Falla(salida::kUso, u"Uso: kaloimpresora cajon PUERTO [--codigo TEXTO]"_s);

    const QByteArray linea = cajon::LineaDeCodigo(*codigo);
    const cajon::Envio e = cajon::Envia(puerto, linea);
    const QString donde = (e.esCola ? u"la cola «%1»"_s : u"«%1»"_s).arg(e.destino) +
                          (e.destino != puerto ? u" (%1)"_s.arg(puerto) : QString());
    using R = cajon::Resultado;
    switch (e.resultado) {
    case R::Enviado:
        Escribe(stdout, u"Enviados %1 bytes a %2\n"_s.arg(linea.size()).arg(donde));
        return salida::kBien;
    case R::NoExiste: return Falla(salida_cajon::kNoExiste, u"No existe %1"_s.arg(donde));
    case R::SinPermiso:
        return Falla(salida_cajon::kSinPermiso,
                     u"Permiso denegado en %1"_s.arg(donde) +
                         (e.grupo.isEmpty() ? QString()
                                            : u": el usuario debe pertenecer al grupo «%1» (sudo usermod -aG %1 "
                                              u"USUARIO, y volver a iniciar la sesión)"_s.arg(e.grupo)));
    case R::Ocupado:
        return Falla(salida_cajon::kOcupado, u"%1 está ocupado por otro programa (¿el servidor de impresión?)"_s.arg(donde));
    case R::TiempoAgotado:
        return Falla(salida_cajon::kTiempoAgotado,
                     u"%1 no recibió los bytes en %2 segundos (¿apagado, sin papel, sin cable o sin lector?)"_s.arg(donde)
                         .arg(cajon::kPlazo.count() / 1000));
    case R::Fallo: break;
    }
    return Falla(salida_cajon::kFallo, u"No se pudo escribir en %1: %2"_s.arg(donde, e.detalle));
}

}  // namespace kalo::herramienta
