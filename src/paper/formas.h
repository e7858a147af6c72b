#pragma once

// Paper forms on the print server. A form named N of cx x cy thousandths of
// a millimetre, defined for the queue P, is the destination instance "P/N"
// carrying the media Custom.<cx/1000>x<cy/1000>mm, saved where the print
// client library keeps the user's destinations (the lpoptions file), so every
// program on the machine sees it and can print with it ("lp -d P/N").

#include <QSize>
#include <QString>
#include <cstdint>
#include <optional>
#include <vector>

struct cups_dest_s;

namespace kalo::formas {

// The queue part of a device name: "P/instancia" gives "P".
QString ColaDe(const QString& dispositivo);

// A name the print server can hold as an instance: not empty, no spaces,
// control characters or "/".
bool NombreValido(const QString& nombre);

struct Forma {
    QString nombre;
    QSize milesimas;  // cx, cy
};

// The destinations as the print server and the user's options list them,
// read once; changes are saved at once.
class Destinos {
public:
    Destinos();
    ~Destinos();
    Destinos(const Destinos&) = delete;
    Destinos& operator=(const Destinos&) = delete;

    bool HayCola(const QString& cola) const;
    // False when the queue is not there, the name cannot be an instance or
    // the instance exists.
    bool Agrega(const QString& cola, const QString& nombre, int32_t cx, int32_t cy);
    // Rewrites the instance's media; false when there is no such instance or
    // it cannot be saved.
    bool Redefine(const QString& cola, const QString& nombre, int32_t cx, int32_t cy);
    // The size an instance's media gives; none for a missing instance or a
    // media that is not a custom size.
    std::optional<QSize> Tamano(const QString& cola, const QString& nombre) const;
    // The forms of the component ("Tiendanova_" + style) on the queue.
    std::vector<Forma> FormasDe(const QString& cola) const;

private:
    cups_dest_s* Busca(const QString& cola, const QString& instancia) const;

    int n_ = 0;
    cups_dest_s* lista_ = nullptr;
};

}  // namespace kalo::formas
