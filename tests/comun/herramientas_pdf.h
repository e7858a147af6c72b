#pragma once

// Reads back what a printer wrote, with the poppler tools: page count and
// sizes (pdfinfo), and a page as a grey image (pdftoppm).

#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QSizeF>
#include <QStringList>
#include <QTemporaryDir>
#include <vector>

namespace kalo::prueba {

struct DatosPdf {
    bool legible = false;
    int paginas = 0;
    std::vector<QSizeF> tamanos;  // points, one per page
};

inline QString Ejecuta(const QString& programa, const QStringList& argumentos, bool* ok = nullptr) {
    QProcess p;
    p.start(programa, argumentos);
    const bool bien = p.waitForFinished(30000) && p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
    if (ok) *ok = bien;
    return QString::fromLocal8Bit(p.readAllStandardOutput());
}

inline DatosPdf LeePdf(const QString& ruta) {
    DatosPdf d;
    bool ok = false;
    const QString salida = Ejecuta(QStringLiteral("pdfinfo"), {QStringLiteral("-f"), QStringLiteral("1"),
                                                               QStringLiteral("-l"), QStringLiteral("9999"), ruta},
                                   &ok);
    if (!ok) return d;
    d.legible = true;
    static const QRegularExpression paginas(QStringLiteral(R"(^Pages:\s+(\d+))"), QRegularExpression::MultilineOption);
    static const QRegularExpression tamano(QStringLiteral(R"(^Page\s+\d+\s+size:\s+([\d.]+) x ([\d.]+) pts)"),
                                           QRegularExpression::MultilineOption);
    if (auto m = paginas.match(salida); m.hasMatch()) d.paginas = m.captured(1).toInt();
    for (auto it = tamano.globalMatch(salida); it.hasNext();) {
        auto m = it.next();
        d.tamanos.emplace_back(m.captured(1).toDouble(), m.captured(2).toDouble());
    }
    return d;
}

// One page rendered in grey at ppp dots per inch; a null image on failure.
// Vector antialiasing is off so that a hairline still darkens whole pixels.
inline QImage PaginaComoImagen(const QString& ruta, int pagina, int ppp = 72) {
    QTemporaryDir dir;
    const QString base = dir.filePath(QStringLiteral("pagina"));
    bool ok = false;
    Ejecuta(QStringLiteral("pdftoppm"),
            {QStringLiteral("-gray"), QStringLiteral("-aaVector"), QStringLiteral("no"), QStringLiteral("-r"), QString::number(ppp), QStringLiteral("-f"),
             QString::number(pagina), QStringLiteral("-l"), QString::number(pagina), QStringLiteral("-singlefile"),
             ruta, base},
            &ok);
    if (!ok) return {};
    return QImage(base + QStringLiteral(".pgm")).convertToFormat(QImage::Format_Grayscale8);
}

// Whether anything darker than mid-grey lies within the square of side
// 2 * radio + 1 centred on (x, y).
inline bool HayTinta(const QImage& imagen, int x, int y, int radio = 1) {
    for (int j = y - radio; j <= y + radio; ++j)
        for (int i = x - radio; i <= x + radio; ++i)
            if (imagen.valid(i, j) && qGray(imagen.pixel(i, j)) < 128) return true;
    return false;
}

}  // namespace kalo::prueba
