#include "reports/ReportPdf.h"

#include "framework/SafeFile.h"
#include "reports/PageRenderer.h"

#include <QBuffer>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>

using namespace Qt::StringLiterals;

namespace {
// Landscape pages keep the paper's name (A4) and say that they are turned.
QPageLayout LayoutOf(const PreparedPage& page)
{
    const double width = page.paperMm.width(), height = page.paperMm.height();
    const QPageSize size(QSizeF(std::min(width, height), std::max(width, height)), QPageSize::Millimeter);
    return QPageLayout(size, width > height ? QPageLayout::Landscape : QPageLayout::Portrait, QMarginsF());
}
} // namespace

QString ProductIdentification()
{
    return u"Halvarn "_s + QStringLiteral(HALVARN_VERSION);
}

QByteArray RenderPdf(const PreparedReport& report, const PdfOptions& options)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    const int first = std::max(options.firstPage, 1) - 1;
    const int last = options.lastPage > 0 ? std::min(options.lastPage, report.pageCount()) : report.pageCount();
    {
        QPdfWriter writer(&buffer);
        writer.setCreator(options.creator.isEmpty() ? ProductIdentification() : options.creator);
        writer.setTitle(report.name);
        writer.setResolution(600);
        const std::size_t firstLayout = static_cast<std::size_t>(std::clamp(first, 0, std::max(last - 1, 0)));
        writer.setPageLayout(LayoutOf(report.pages.empty() ? PreparedPage{} : report.pages[firstLayout]));
        QPainter painter(&writer);
        for (int page = first; page < last; ++page) {
            if (page > first) {
                writer.setPageLayout(LayoutOf(report.pages[static_cast<std::size_t>(page)]));
                writer.newPage();
            }
            PaintPageOnDevice(painter, writer, report, page);
        }
    }
    return bytes;
}

void WritePdf(const PreparedReport& report, const QString& path, const PdfOptions& options)
{
    WriteFileAtomically(path, RenderPdf(report, options));
}
