#include "paper/cajon.h"

#include <cups/cups.h>
#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QThread>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>

#include "kaloimpresora/conversiones.h"

namespace kalo::cajon {

using namespace Qt::StringLiterals;
using Reloj = std::chrono::steady_clock;

namespace {

// Windows-1252 from 0x80 to 0x9F; the five bytes it leaves undefined stand
// for the control characters of the same number, as the system's conversion
// has them.
constexpr char16_t k1252[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

QByteArray A1252(const QString& texto) {
    QByteArray b;
    b.reserve(texto.size());
    for (const QChar c : texto) {
        const char16_t u = c.unicode();
        if (u < 0x80 || (u >= 0xA0 && u <= 0xFF)) {
            b += static_cast<char>(u);
            continue;
        }
        const auto* fin = std::end(k1252);
        const auto* it = std::find(std::begin(k1252), fin, u);
        b += it == fin ? '?' : static_cast<char>(0x80 + (it - std::begin(k1252)));
    }
    return b;
}

QString TextoDeImpresion(const Variant& v) {
    switch (v.tipo()) {
    case TipoVariant::Vacio: return {};
    case TipoVariant::Nulo: return u"Null"_s;
    case TipoVariant::Booleano: return v.booleano() ? u"True"_s : u"False"_s;
    case TipoVariant::Entero:
    case TipoVariant::Largo:
    case TipoVariant::Sencillo:
    case TipoVariant::Doble:
    case TipoVariant::Moneda: {
        const QString t = CStr(v);
        return (t.startsWith(u'-') ? t : u' ' + t) + u' ';
    }
    default: return CStr(v);
    }
}

int Restante(Reloj::time_point limite) {
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(limite - Reloj::now()).count();
    return ms > 0 ? static_cast<int>(ms) : 0;
}

Envio Para(QString destino, bool esCola = false) {
    Envio e;
    e.resultado = Resultado::Enviado;
    e.destino = std::move(destino);
    e.esCola = esCola;
    return e;
}

Envio Resulta(Envio e, Resultado r, QString detalle = {}) {
    e.resultado = r;
    e.detalle = std::move(detalle);
    return e;
}

// ---- Print-server queues ------------------------------------------------------------

struct Conexion {
    http_t* http = nullptr;
    ~Conexion() {
        if (http) httpClose(http);
    }
};

// Any wait of the connection past the deadline gives up.
int Rinde(http_t*, void*) { return 0; }

bool Conecta(Conexion& c, Reloj::time_point limite) {
    // A timeout of 0 would mean "do not connect" here.
    const int ms = std::max(Restante(limite), 1);
    c.http = httpConnect2(cupsServer(), ippPort(), nullptr, AF_UNSPEC, cupsEncryption(), 1, ms, nullptr);
    if (c.http) httpSetTimeout(c.http, ms / 1000.0, Rinde, nullptr);
    return c.http != nullptr;
}

// The queue's own name, or nothing when the server has none by that name.
std::optional<QByteArray> BuscaCola(http_t* http, const QString& cola) {
    cups_dest_t* d = cupsGetNamedDest(http, cola.toLocal8Bit().constData(), nullptr);
    if (!d) return std::nullopt;
    QByteArray nombre(d->name);
    cupsFreeDests(1, d);
    return nombre;
}

Envio FallaDeCola(Envio e, Reloj::time_point limite) {
    switch (cupsLastError()) {
    case IPP_STATUS_ERROR_NOT_FOUND: return Resulta(e, Resultado::NoExiste);
    case IPP_STATUS_ERROR_FORBIDDEN:
    case IPP_STATUS_ERROR_NOT_AUTHENTICATED:
    case IPP_STATUS_ERROR_NOT_AUTHORIZED: return Resulta(e, Resultado::SinPermiso);
    case IPP_STATUS_ERROR_NOT_ACCEPTING_JOBS:
    case IPP_STATUS_ERROR_BUSY: return Resulta(e, Resultado::Ocupado);
    default:
        if (Reloj::now() >= limite) return Resulta(e, Resultado::TiempoAgotado);
        return Resulta(e, Resultado::Fallo, QString::fromUtf8(cupsLastErrorString()));
    }
}

Envio EnviaACola(http_t* http, const QByteArray& cola, const QByteArray& bytes, Reloj::time_point limite) {
    const Envio e = Para(QString::fromLocal8Bit(cola), true);
    if (bytes.isEmpty()) return e;
    const int trabajo = cupsCreateJob(http, cola.constData(), "Cajón de dinero", 0, nullptr);
    if (trabajo == 0) return FallaDeCola(e, limite);
    if (cupsStartDocument(http, cola.constData(), trabajo, "cajon", CUPS_FORMAT_RAW, 1) != HTTP_STATUS_CONTINUE ||
        cupsWriteRequestData(http, bytes.constData(), static_cast<size_t>(bytes.size())) != HTTP_STATUS_CONTINUE ||
        cupsFinishDocument(http, cola.constData()) != IPP_STATUS_OK) {
        cupsCancelJob2(http, cola.constData(), trabajo, 0);
        return FallaDeCola(e, limite);
    }
    return e;
}

// ---- Devices, FIFOs and files -------------------------------------------------------

// A reader that goes away mid-write must not end the host with SIGPIPE.
class SinSenalDeTuberia {
public:
    SinSenalDeTuberia() {
        sigemptyset(&senal_);
        sigaddset(&senal_, SIGPIPE);
        sigset_t pendientes;
        sigpending(&pendientes);
        yaPendiente_ = sigismember(&pendientes, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &senal_, &anterior_);
    }
    ~SinSenalDeTuberia() {
        sigset_t pendientes;
        sigpending(&pendientes);
        if (!yaPendiente_ && sigismember(&pendientes, SIGPIPE)) {
            const timespec nada{};
            sigtimedwait(&senal_, nullptr, &nada);
        }
        pthread_sigmask(SIG_SETMASK, &anterior_, nullptr);
    }

private:
    sigset_t senal_, anterior_;
    bool yaPendiente_ = false;
};

// The group whose members may use the device: its own, or the one a
// distribution gives to devices of its kind.
QString GrupoDe(const QByteArray& ruta) {
    struct stat st{};
    if (stat(ruta.constData(), &st) == 0 && st.st_gid != 0)
        if (const group* g = getgrgid(st.st_gid)) return QString::fromLocal8Bit(g->gr_name);
    if (ruta.startsWith("/dev/tty")) return u"dialout"_s;
    if (ruta.startsWith("/dev/lp") || ruta.startsWith("/dev/usb/lp")) return u"lp"_s;
    return {};
}

Envio FallaDeSistema(Envio e, int error, const QByteArray& ruta) {
    switch (error) {
    case ENOENT:
    case ENOTDIR:
    case ENXIO:
    case ENODEV: return Resulta(e, Resultado::NoExiste);
    case EACCES:
    case EPERM:
    case EROFS: e.grupo = GrupoDe(ruta); return Resulta(e, Resultado::SinPermiso);
    case EBUSY:
    case EAGAIN: return Resulta(e, Resultado::Ocupado);
    case ETIMEDOUT: return Resulta(e, Resultado::TiempoAgotado);
    default: return Resulta(e, Resultado::Fallo, QString::fromLocal8Bit(std::strerror(error)));
    }
}

bool EsFifo(const QByteArray& ruta) {
    struct stat st{};
    return stat(ruta.constData(), &st) == 0 && S_ISFIFO(st.st_mode);
}

// Opened without blocking, so that neither a FIFO without a reader nor a
// serial line without carrier can hold the call.
int Abre(const QByteArray& ruta, bool creable, Reloj::time_point limite, int& error) {
    const int banderas = O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC | O_TRUNC | (creable ? O_CREAT : 0);
    for (;;) {
        const int fd = ::open(ruta.constData(), banderas, 0666);
        if (fd >= 0) return fd;
        error = errno;
        if (error == EINTR) continue;
        // A FIFO that nobody reads yet: a reader may still come in time.
        if (error != ENXIO || !EsFifo(ruta)) return -1;
        if (Restante(limite) == 0) {
            error = ETIMEDOUT;
            return -1;
        }
        QThread::msleep(std::min(20, Restante(limite)));
    }
}

// Every byte out, or the deadline. A serial line also waits until its
// output has left: what it could not send by then is dropped, so that
// closing it does not wait either.
int Escribe(int fd, const QByteArray& bytes, Reloj::time_point limite) {
    const SinSenalDeTuberia sinSenal;
    for (qsizetype hecho = 0; hecho < bytes.size();) {
        const ssize_t n = ::write(fd, bytes.constData() + hecho, static_cast<size_t>(bytes.size() - hecho));
        if (n > 0) {
            hecho += n;
            continue;
        }
        if (n < 0 && errno == EINTR) continue;
        if (n < 0 && errno != EAGAIN) return errno;
        pollfd p{fd, POLLOUT, 0};
        const int listo = Restante(limite) > 0 ? ::poll(&p, 1, Restante(limite)) : 0;
        if (listo < 0 && errno != EINTR) return errno;
        if (listo == 0) {
            if (isatty(fd)) tcflush(fd, TCOFLUSH);
            return ETIMEDOUT;
        }
    }
    if (isatty(fd)) {
        for (int pendiente = 0; ::ioctl(fd, TIOCOUTQ, &pendiente) == 0 && pendiente > 0;) {
            if (Restante(limite) == 0) {
                tcflush(fd, TCOFLUSH);
                return ETIMEDOUT;
            }
            QThread::msleep(std::min(10, Restante(limite)));
        }
    }
    return 0;
}

Envio EscribeEnRuta(const Destino& d, const QByteArray& bytes, Reloj::time_point limite) {
    const Envio e = Para(d.ruta);
    const QByteArray ruta = QFile::encodeName(d.ruta);
    int error = 0;
    const int fd = Abre(ruta, d.creable, limite, error);
    if (fd < 0) return FallaDeSistema(e, error, ruta);
    error = Escribe(fd, bytes, limite);
    ::close(fd);
    return error == 0 ? e : FallaDeSistema(e, error, ruta);
}

}  // namespace

QChar CaracterDe1252(unsigned char byte) {
    return byte >= 0x80 && byte < 0xA0 ? QChar(k1252[byte - 0x80]) : QChar(byte);
}

QByteArray LineaDeCodigo(const Variant& codigo) { return A1252(TextoDeImpresion(codigo)) + "\r\n"; }

Destino ResuelvePuerto(const QString& puerto, const std::function<bool(const QString&)>& existe) {
    const auto hay = [&](const QString& ruta) { return existe ? existe(ruta) : QFileInfo::exists(ruta); };
    static const QRegularExpression kNombre(uR"(^(LPT|COM|PRN)(\d*):?$)"_s, QRegularExpression::CaseInsensitiveOption);
    if (const auto m = kNombre.match(puerto); m.hasMatch()) {
        const QString tipo = m.captured(1).toUpper();
        const int n = tipo == u"PRN"_s ? (m.captured(2).isEmpty() ? 1 : 0) : m.captured(2).toInt();
        if (n >= 1 && tipo == u"COM"_s) return {{}, u"/dev/ttyS%1"_s.arg(n - 1)};
        if (n >= 1) {
            QStringList presentes;
            for (int i = 0; i < 4; ++i) presentes << u"/dev/lp%1"_s.arg(i);
            for (int i = 0; i < 16; ++i) presentes << u"/dev/usb/lp%1"_s.arg(i);
            presentes.removeIf([&](const QString& r) { return !hay(r); });
            return {{}, n <= presentes.size() ? presentes[n - 1] : u"/dev/lp%1"_s.arg(n - 1)};
        }
    }
    if (puerto.startsWith(u"\\\\"_s)) return {puerto.split(u'\\', Qt::SkipEmptyParts).value(1), {}};
    const bool dispositivo = puerto.startsWith(u"/dev/"_s);
    if (puerto.contains(u'/') || puerto.isEmpty() || hay(puerto)) return {{}, puerto, !dispositivo};
    return {puerto, puerto, true};
}

Envio Envia(const QString& puerto, const QByteArray& bytes, std::chrono::milliseconds plazo) {
    const auto limite = Reloj::now() + plazo;
    const Destino d = ResuelvePuerto(puerto);
    if (!d.cola.isEmpty()) {
        Conexion c;
        if (!Conecta(c, limite)) {
            if (d.ruta.isEmpty()) return Resulta(Para(d.cola, true), Resultado::Fallo, u"no hay servidor de impresión"_s);
        } else if (const auto cola = BuscaCola(c.http, d.cola)) {
            return EnviaACola(c.http, *cola, bytes, limite);
        } else if (d.ruta.isEmpty()) {
            return Resulta(Para(d.cola, true), Resultado::NoExiste);
        }
    }
    return EscribeEnRuta(d, bytes, limite);
}

}  // namespace kalo::cajon
