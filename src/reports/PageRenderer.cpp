#include "reports/PageRenderer.h"

#include "reports/ReportFonts.h"

#include <QPaintDevice>
#include <QPainter>

#include <unordered_map>

namespace {

int Alignment(const PreparedStyle& style)
{
    int flags = 0;
    switch (style.hAlign) {
    case HAlign::Left: flags |= Qt::AlignLeft; break;
    case HAlign::Right: flags |= Qt::AlignRight; break;
    case HAlign::Center: flags |= Qt::AlignHCenter; break;
    case HAlign::Block: flags |= Qt::AlignJustify; break;
    }
    switch (style.vAlign) {
    case VAlign::Top: flags |= Qt::AlignTop; break;
    case VAlign::Center: flags |= Qt::AlignVCenter; break;
    case VAlign::Bottom: flags |= Qt::AlignBottom; break;
    }
    if (style.wordWrap)
        flags |= Qt::TextWordWrap;
    return flags;
}

QPen FramePen(const ReportFrame& frame)
{
    QPen pen(frame.color.isValid() ? frame.color : QColor(Qt::black));
    pen.setWidthF(frame.width);
    pen.setCapStyle(Qt::SquareCap);
    return pen;
}

void PaintFrame(QPainter& painter, const QRectF& rect, const ReportFrame& frame)
{
    if (frame.sides == 0)
        return;
    painter.setPen(FramePen(frame));
    if (frame.sides & FrameLeft)
        painter.drawLine(rect.topLeft(), rect.bottomLeft());
    if (frame.sides & FrameRight)
        painter.drawLine(rect.topRight(), rect.bottomRight());
    if (frame.sides & FrameTop)
        painter.drawLine(rect.topLeft(), rect.topRight());
    if (frame.sides & FrameBottom)
        painter.drawLine(rect.bottomLeft(), rect.bottomRight());
}

// A turned text is drawn in a box of swapped sides around the memo's centre.
void PaintRotatedText(QPainter& painter, const QRectF& box, const PreparedStyle& style, const QString& text)
{
    painter.save();
    painter.translate(box.center());
    painter.rotate(-style.rotation);
    const bool sideways = static_cast<int>(style.rotation) % 180 != 0;
    const QSizeF size = sideways ? box.size().transposed() : box.size();
    painter.drawText(QRectF(QPointF(-size.width() / 2, -size.height() / 2), size), Alignment(style), text);
    painter.restore();
}

class PagePainter {
public:
    PagePainter(QPainter& painter, const PreparedReport& report, double deviceDpi)
        : painter_(painter), report_(report), deviceDpi_(deviceDpi)
    {}

    void paint(const PreparedItem& item)
    {
        const PreparedStyle& style = report_.styles[static_cast<std::size_t>(item.style)];
        switch (item.kind) {
        case ItemKind::Text: paintText(item, style); break;
        case ItemKind::Line:
            painter_.setPen(FramePen(style.frame));
            painter_.drawLine(item.rect.topLeft(), item.rect.bottomRight());
            break;
        case ItemKind::Shape: paintShape(item.rect, style); break;
        case ItemKind::Frame: PaintFrame(painter_, item.rect, style.frame); break;
        }
    }

private:
    void paintText(const PreparedItem& item, const PreparedStyle& style)
    {
        if (style.fill.isValid())
            painter_.fillRect(item.rect, style.fill);
        if (!item.text.isEmpty()) {
            painter_.setFont(font(item.style, style));
            painter_.setPen(style.font.color);
            const QRectF box = item.rect.adjusted(style.gapX, style.gapY, -style.gapX, -style.gapY);
            // Qt clips a text to its box only when it overflows, so a long text
            // is cut at the box instead of disappearing.
            if (style.rotation == 0.0)
                painter_.drawText(box, Alignment(style), item.text);
            else
                PaintRotatedText(painter_, box, style, item.text);
        }
        PaintFrame(painter_, item.rect, style.frame);
    }

    void paintShape(const QRectF& rect, const PreparedStyle& style)
    {
        painter_.setPen(FramePen(style.frame));
        painter_.setBrush(style.fill.isValid() ? QBrush(style.fill) : QBrush(Qt::NoBrush));
        switch (style.shape) {
        case ShapeKind::Ellipse: painter_.drawEllipse(rect); break;
        case ShapeKind::RoundRectangle: painter_.drawRoundedRect(rect, 8.0, 8.0); break;
        case ShapeKind::Triangle:
            painter_.drawPolygon(
                QPolygonF{rect.bottomLeft(), QPointF(rect.center().x(), rect.top()), rect.bottomRight()});
            break;
        case ShapeKind::Diamond:
            painter_.drawPolygon(
                QPolygonF{QPointF(rect.center().x(), rect.top()), QPointF(rect.right(), rect.center().y()),
                          QPointF(rect.center().x(), rect.bottom()), QPointF(rect.left(), rect.center().y())});
            break;
        case ShapeKind::Diagonal1: painter_.drawLine(rect.bottomLeft(), rect.topRight()); break;
        case ShapeKind::Diagonal2: painter_.drawLine(rect.topLeft(), rect.bottomRight()); break;
        case ShapeKind::Rectangle: painter_.drawRect(rect); break;
        }
        painter_.setBrush(Qt::NoBrush);
    }

    const QFont& font(int index, const PreparedStyle& style)
    {
        auto found = fonts_.find(index);
        if (found == fonts_.end())
            found = fonts_.emplace(index, MappedFont(style.font, deviceDpi_)).first;
        return found->second;
    }

    QPainter& painter_;
    const PreparedReport& report_;
    double deviceDpi_;
    std::unordered_map<int, QFont> fonts_;
};

} // namespace

void PaintPage(QPainter& painter, const PreparedReport& report, int page, double deviceDpi, int highlighted)
{
    if (page < 0 || page >= report.pageCount())
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    PagePainter pagePainter(painter, report, deviceDpi);
    const std::vector<PreparedItem>& items = report.pages[static_cast<std::size_t>(page)].items;
    for (const PreparedItem& item : items)
        pagePainter.paint(item);
    if (highlighted >= 0 && highlighted < static_cast<int>(items.size()))
        painter.fillRect(items[static_cast<std::size_t>(highlighted)].rect, QColor(255, 200, 0, 110));
    painter.restore();
}

void PaintPageOnDevice(QPainter& painter, const QPaintDevice& device, const PreparedReport& report, int page)
{
    const double dpi = device.logicalDpiY();
    painter.save();
    painter.scale(device.logicalDpiX() / 96.0, dpi / 96.0);
    PaintPage(painter, report, page, dpi);
    painter.restore();
}
