#pragma once

// What every printer object has whatever its pages become (a print job, a
// PDF file, images): the sheet and its units, copies, the job's counters,
// suppressed output, and the member table hosts reach it through. A printer
// supplies its device: the sheet as the device holds it, the drawable area,
// and how a job begins, turns a page and ends, all painted with pintor().
//
// The job opens on the first output (an empty Print included, and NewPage,
// so that a document of blank pages still has its pages); EndDoc finishes it
// and the next output opens another.
//
// With Suprime set, output is measured and not drawn: position, font and
// every other state move exactly as they would, but no job opens, NewPage
// makes no page and EndDoc and KillDoc leave an open job as it is. That is
// how one page of a document is reproduced with the state the pages before
// it left behind.

#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QString>
#include <memory>

#include "kaloimpresora/automatizacion.h"
#include "target/lienzo.h"

namespace kalo {

class ImpresoraComun : public ConTabla<ImpresoraComun>, public std::enable_shared_from_this<ImpresoraComun> {
public:
    ~ImpresoraComun() override;

    static const TablaDeMiembros& Tabla();
    // Final, so that a member reached directly (ImpresoraActualPropia) does
    // what the same member reached by name does.
    int32_t IdDeNombre(const QString& nombre) const final { return ConTabla::IdDeNombre(nombre); }
    Variant Invoca(int32_t dispid, Llamada tipo, std::span<Variant> argumentos) final {
        return ConTabla::Invoca(dispid, tipo, argumentos);
    }

    const QString& DeviceName() const { return nombre_; }
    Lienzo& lienzo() { return *lienzo_; }

    // Job lifecycle.
    bool TrabajoAbierto() const { return hdc_ != 0; }
    // Non-zero while a job is open.
    int32_t hDC() const { return hdc_; }
    // Page number within the open job (1 for the first); 0 with no job.
    int32_t Page() const { return pagina_; }
    void Print(const QString& texto, bool saltoDeLinea = true);
    void NewPage();
    void EndDoc();
    void KillDoc();
    // The file the last ended job became, for printers that write one.
    virtual QString ArchivoDeSalida() const { return {}; }

    bool Suprime() const { return suprime_; }
    void Suprime(bool valor) { suprime_ = valor; }

    // Sheet. Codes are the platform's paper codes (1 Letter, 5 Legal, 9 A4,
    // 256 user-defined); orientation 1 portrait, 2 landscape. Width and Height
    // are the whole sheet, in twips, as it lies (landscape swaps them). Inside
    // an open job a new sheet takes effect from the next page; the scale
    // follows at once.
    int16_t Copies() const { return copias_; }
    void Copies(int16_t copias);
    int16_t PaperSize() const;
    void PaperSize(int16_t codigo);
    int16_t Orientation() const;
    void Orientation(int16_t orientacion);
    int32_t Width() const;
    int32_t Height() const;
    void Width(int32_t twips);
    void Height(int32_t twips);

    // 1 transparent, 2 opaque: the device context's background mode, which is
    // what FontTransparent sets too.
    int16_t ModoDeFondo() const { return lienzo_->FontTransparent() ? 1 : 2; }
    void ModoDeFondo(int16_t modo);

    // The runtime's unit conversion between scale modes (0 user, that is the
    // current scale; 1 twips; 2 points; 3 pixels; 4 characters; 5 inches;
    // 6 mm; 7 cm; 8 HIMETRIC).
    double ScaleX(double valor, int16_t de, int16_t a) const;
    double ScaleY(double valor, int16_t de, int16_t a) const;

protected:
    explicit ImpresoraComun(QString nombre);

    // Once the device is ready, at the end of the printer's constructor.
    void PreparaLienzo();
    // For the printer's destructor: a job still open is ended and handed
    // over, Suprime or not, as the runtime does when it exits.
    void TerminaAlDestruir() noexcept;

    // The painter every job paints with; the device begins and ends it.
    QPainter& pintor() { return pintor_; }

    // The sheet as the device holds it.
    virtual QPageLayout Hoja() const = 0;
    // Puts the device on another sheet; raises 380 when it cannot.
    virtual void CambiaHoja(const QPageSize& hoja, QPageLayout::Orientation orientacion) = 0;
    // What can be drawn on, in device pixels, and the device's dots per inch.
    virtual QSize AreaDibujable() const = 0;
    virtual double Resolucion() const = 0;
    // Begins pintor() on the job's first page, or raises.
    virtual void IniciaTrabajo() = 0;
    // Finishes the page under way and starts the next, on the sheet in force.
    virtual void PasaPagina() = 0;
    // Ends pintor(); entrega says whether the job goes out or is dropped.
    virtual void CierraTrabajo(bool entrega, int32_t paginas) = 0;

private:
    QPainter* AbreTrabajo();
    void TerminaTrabajo(bool entrega);
    int32_t Lado(bool ancho) const;
    void Lado(bool ancho, int32_t twips);
    void AplicaHoja(const QPageSize& hoja, QPageLayout::Orientation orientacion);
    double TwipsPorUnidad(int16_t modo, bool horizontal) const;

    QString nombre_;
    QPainter pintor_;
    std::unique_ptr<Lienzo> lienzo_;
    int16_t copias_ = 1;
    int32_t hdc_ = 0;
    int32_t pagina_ = 0;
    bool suprime_ = false;
};

}  // namespace kalo
