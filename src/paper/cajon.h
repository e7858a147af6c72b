#pragma once

// The cash drawer: the host's code written to the port the drawer, or the
// receipt printer it hangs on, is attached to. A port is a device or file
// path, an old port name (LPT1, COM1...), or a print-server queue, which
// gets the bytes as a raw job. Opening and writing never take longer than
// the time given, and nothing stays open afterwards.

#include <QByteArray>
#include <QString>
#include <chrono>
#include <functional>

#include "kaloimpresora/variant.h"

namespace kalo::cajon {

inline constexpr std::chrono::milliseconds kPlazo{2000};

// What the runtime's print statement writes for one value, in Windows-1252
// (a character it lacks as "?"), then CR LF: text as it is, a number as
// " 7 " (a minus sign in place of the leading space), Null as "Null", Empty
// as nothing. A value that cannot be turned into text raises.
QByteArray LineaDeCodigo(const Variant& codigo);

// The character that Windows-1252 writes as this byte.
QChar CaracterDe1252(unsigned char byte);

// Where a port name leads: a queue to try first, else a path.
struct Destino {
    QString cola;
    QString ruta;
    bool creable = false;  // a plain file may be created there
};
// LPTn and PRN (= LPT1), with or without ":", are the n-th of /dev/lp0-3 and
// /dev/usb/lp0-15 that exists (existe says which), or /dev/lp<n-1>; COMn is
// /dev/ttyS<n-1>; "\\servidor\cola" is that queue. A name with no "/" that
// is not a file is a queue when the print server has one, else a file.
// Nothing under /dev is ever created.
Destino ResuelvePuerto(const QString& puerto, const std::function<bool(const QString&)>& existe = {});

enum class Resultado { Enviado, NoExiste, SinPermiso, Ocupado, TiempoAgotado, Fallo };
struct Envio {
    Resultado resultado = Resultado::Fallo;
    QString destino;  // the path or queue it went to
    bool esCola = false;
    QString grupo;    // SinPermiso: the group that may use the device
    QString detalle;  // Fallo: the system's or print server's words
};

// Opens, writes and closes, within plazo. A plain file is created or
// truncated; empty bytes only do that. Never raises.
Envio Envia(const QString& puerto, const QByteArray& bytes, std::chrono::milliseconds plazo = kPlazo);

}  // namespace kalo::cajon
