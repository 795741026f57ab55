#include "gui/preview/PageView.h"

#include "gui/preview/PageCache.h"
#include "gui/preview/PageLayout.h"
#include "reports/PageRenderer.h"

#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <limits>
#include <optional>

namespace {
constexpr int MinPercent = 10;
constexpr int MaxPercent = 400;
constexpr int WheelStepPercent = 10;
constexpr int WheelNotch = 120;
constexpr int ScrollStep = 40;
constexpr int PageShadowOffset = 3;
constexpr int CachedPages = 8;
// An A4 page at 400 % is some 60 MB; the budget keeps four of them.
constexpr qsizetype CachedBytes = qsizetype(256) * 1024 * 1024;
constexpr QColor ViewBackground(0x80, 0x80, 0x80);
constexpr QColor PageShadow(0x40, 0x40, 0x40);

// A point of a page that a zoom keeps at the same place of the view.
struct Anchor {
    int page = 0;
    QPointF onPage; // template pixels from the page's top left
    QPoint inView;
};
} // namespace

struct PageView::Private {
    explicit Private(PageView& owner) : view(owner) {}

    double screenPerTemplatePx() const { return view.logicalDpiY() / 96.0; }
    QPoint scrollOffset() const { return {view.horizontalScrollBar()->value(), view.verticalScrollBar()->value()}; }
    int pageAtTop() const { return layout.firstPageBelow(scrollOffset().y() + PageLayout::Gap); }

    PageScaling scaling() const;
    void relayout();
    void updateScrollBars();
    Anchor anchorAt(QPoint inView, int page) const;
    Anchor currentPageAnchor() const { return anchorAt(QPoint(view.viewport()->width() / 2, 0), current); }
    void placeAt(const Anchor& anchor);
    void rezoom(const Anchor& anchor);
    void setCurrent(int page);
    void reveal(const QRect& inContents);
    QRect hitRect() const;
    QImage pageImage(int page, QSize size);
    QImage render(int page, QSize size, int highlighted);

    PageView& view;
    std::shared_ptr<const PreparedReport> report = std::make_shared<const PreparedReport>();
    ZoomMode mode = ZoomMode::PageWidth;
    int percent = 100;
    PageLayout layout;
    PageCache cache{CachedPages, CachedBytes};
    int current = 0;
    std::optional<TextHit> hit;
    int rendered = 0;
    bool placing = false; // the view scrolls itself: the current page is set by whoever scrolls
    int wheelAngle = 0;
};

PageScaling PageView::Private::scaling() const
{
    const double screen = screenPerTemplatePx();
    if (mode == ZoomMode::Percent)
        return PageScaling{percent / 100.0 * screen, {}, 0.0, 0.0};
    constexpr double Unbounded = std::numeric_limits<double>::infinity();
    const double width = view.viewport()->width() - 2.0 * PageLayout::Gap;
    const double height = view.viewport()->height() - 2.0 * PageLayout::Gap;
    const QSizeF box = mode == ZoomMode::WholePage  ? QSizeF(width, height)
                       : mode == ZoomMode::TwoPages ? QSizeF((width - PageLayout::Gap) / 2.0, Unbounded)
                                                    : QSizeF(width, Unbounded);
    return PageScaling{1.0, box, MinPercent / 100.0 * screen, MaxPercent / 100.0 * screen};
}

void PageView::Private::relayout()
{
    layout.build(*report, scaling(), mode == ZoomMode::TwoPages ? 2 : 1, view.viewport()->width());
    updateScrollBars();
}

void PageView::Private::updateScrollBars()
{
    const QSize viewSize = view.viewport()->size();
    const QSize content = layout.contentSize();
    view.horizontalScrollBar()->setRange(0, std::max(0, content.width() - viewSize.width()));
    view.horizontalScrollBar()->setPageStep(viewSize.width());
    view.horizontalScrollBar()->setSingleStep(ScrollStep);
    view.verticalScrollBar()->setRange(0, std::max(0, content.height() - viewSize.height()));
    view.verticalScrollBar()->setPageStep(viewSize.height());
    view.verticalScrollBar()->setSingleStep(ScrollStep);
}

Anchor PageView::Private::anchorAt(QPoint inView, int page) const
{
    const QPoint inContents = inView + scrollOffset();
    const QPointF onPage = QPointF(inContents - layout.pageRect(page).topLeft()) / layout.pixelsPerTemplatePx(page);
    return Anchor{page, onPage, inView};
}

void PageView::Private::placeAt(const Anchor& anchor)
{
    const QPointF onPage = anchor.onPage * layout.pixelsPerTemplatePx(anchor.page);
    const QPoint inContents = layout.pageRect(anchor.page).topLeft() + onPage.toPoint();
    view.horizontalScrollBar()->setValue(inContents.x() - anchor.inView.x());
    view.verticalScrollBar()->setValue(inContents.y() - anchor.inView.y());
}

void PageView::Private::rezoom(const Anchor& anchor)
{
    placing = true;
    relayout();
    placeAt(anchor);
    placing = false;
    view.viewport()->update();
}

void PageView::Private::setCurrent(int page)
{
    if (page == current)
        return;
    current = page;
    Q_EMIT view.currentPageChanged(page);
}

void PageView::Private::reveal(const QRect& inContents)
{
    const QRect visible(scrollOffset(), view.viewport()->size());
    placing = true;
    if (inContents.top() < visible.top() || inContents.bottom() > visible.bottom())
        view.verticalScrollBar()->setValue(inContents.center().y() - visible.height() / 2);
    if (inContents.left() < visible.left() || inContents.right() > visible.right())
        view.horizontalScrollBar()->setValue(inContents.center().x() - visible.width() / 2);
    placing = false;
}

QRect PageView::Private::hitRect() const
{
    const auto& items = report->pages[static_cast<std::size_t>(hit->page)].items;
    if (hit->item < 0 || hit->item >= std::ssize(items))
        return layout.pageRect(hit->page);
    const QRectF& rect = items[static_cast<std::size_t>(hit->item)].rect;
    const double scale = layout.pixelsPerTemplatePx(hit->page);
    return QRectF(rect.topLeft() * scale, rect.size() * scale)
        .translated(layout.pageRect(hit->page).topLeft())
        .toAlignedRect();
}

QImage PageView::Private::pageImage(int page, QSize size)
{
    const PageCache::Key key{page, size, hit && hit->page == page ? hit->item : -1};
    QImage image = cache.find(key);
    if (image.isNull()) {
        image = render(page, size, key.highlighted);
        cache.insert(key, image);
    }
    return image;
}

// Fonts are sized by the resolution of the image, which is the screen's;
// the painter's scale then brings the template pixels to the zoom.
QImage PageView::Private::render(int page, QSize size, int highlighted)
{
    const qreal ratio = view.devicePixelRatioF();
    QImage image(size * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    const int dotsPerMeter = qRound(view.logicalDpiY() / 0.0254);
    image.setDotsPerMeterX(dotsPerMeter);
    image.setDotsPerMeterY(dotsPerMeter);
    image.fill(Qt::white);
    QPainter painter(&image);
    const QSizeF paper = PageLayout::TemplateSize(report->pages[static_cast<std::size_t>(page)]);
    painter.scale(size.width() / paper.width(), size.height() / paper.height());
    PaintPage(painter, *report, page, image.logicalDpiY(), highlighted);
    ++rendered;
    return image;
}

PageView::PageView(QWidget* parent) : QAbstractScrollArea(parent), d_(std::make_unique<Private>(*this))
{
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // a fitting zoom would otherwise toggle it
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setAttribute(Qt::WA_OpaquePaintEvent);
    d_->relayout();
}

PageView::~PageView() = default;

void PageView::setReport(std::shared_ptr<const PreparedReport> report)
{
    d_->report = report ? std::move(report) : std::make_shared<const PreparedReport>();
    d_->cache.clear();
    d_->hit.reset();
    const int page = std::clamp(d_->current, 0, std::max(pageCount() - 1, 0));
    d_->placing = true;
    d_->relayout();
    d_->placing = false;
    goToPage(page);
    d_->setCurrent(page);
    viewport()->update();
}

const PreparedReport* PageView::report() const
{
    return d_->report.get();
}

int PageView::pageCount() const
{
    return d_->report->pageCount();
}

void PageView::setZoomPercent(int percent)
{
    percent = std::clamp(percent, MinPercent, MaxPercent);
    if (d_->mode == ZoomMode::Percent && d_->percent == percent)
        return;
    const Anchor anchor = d_->currentPageAnchor();
    d_->mode = ZoomMode::Percent;
    d_->percent = percent;
    d_->rezoom(anchor);
    Q_EMIT zoomChanged();
}

void PageView::setZoomMode(ZoomMode mode)
{
    if (d_->mode == mode)
        return;
    const Anchor anchor = d_->currentPageAnchor();
    d_->mode = mode;
    d_->rezoom(anchor);
    Q_EMIT zoomChanged();
}

PageView::ZoomMode PageView::zoomMode() const
{
    return d_->mode;
}

int PageView::zoomPercent() const
{
    if (d_->mode == ZoomMode::Percent)
        return d_->percent;
    return qRound(d_->layout.pixelsPerTemplatePx(d_->current) / d_->screenPerTemplatePx() * 100.0);
}

int PageView::currentPage() const
{
    return d_->current;
}

void PageView::goToPage(int page)
{
    if (pageCount() == 0)
        return;
    page = std::clamp(page, 0, pageCount() - 1);
    const QRect rect = d_->layout.pageRect(page);
    const int left = horizontalScrollBar()->value();
    d_->placing = true;
    verticalScrollBar()->setValue(rect.top() - PageLayout::Gap);
    if (rect.right() < left || rect.left() > left + viewport()->width())
        horizontalScrollBar()->setValue(rect.left() - PageLayout::Gap);
    d_->placing = false;
    d_->setCurrent(page);
}

void PageView::showHit(const TextHit& hit)
{
    if (hit.page < 0 || hit.page >= pageCount())
        return;
    d_->hit = hit;
    goToPage(hit.page);
    d_->reveal(d_->hitRect());
    viewport()->update();
}

void PageView::clearHit()
{
    d_->hit.reset();
    viewport()->update();
}

int PageView::renderedPageCount() const
{
    return d_->rendered;
}

void PageView::paintEvent(QPaintEvent* event)
{
    QPainter painter(viewport());
    painter.fillRect(event->rect(), ViewBackground);
    const QPoint origin = d_->scrollOffset();
    const auto [first, last] = d_->layout.pagesBetween(origin.y(), origin.y() + viewport()->height());
    for (int page = first; page < last; ++page) {
        const QRect rect = d_->layout.pageRect(page).translated(-origin);
        if (!rect.adjusted(0, 0, PageShadowOffset, PageShadowOffset).intersects(event->rect()))
            continue;
        painter.fillRect(rect.translated(PageShadowOffset, PageShadowOffset), PageShadow);
        painter.drawImage(rect.topLeft(), d_->pageImage(page, rect.size()));
    }
}

void PageView::resizeEvent(QResizeEvent*)
{
    d_->rezoom(d_->currentPageAnchor());
}

void PageView::wheelEvent(QWheelEvent* event)
{
    if (!event->modifiers().testFlag(Qt::ControlModifier)) {
        QAbstractScrollArea::wheelEvent(event);
        return;
    }
    event->accept();
    d_->wheelAngle += event->angleDelta().y();
    const int steps = d_->wheelAngle / WheelNotch;
    d_->wheelAngle %= WheelNotch;
    if (steps == 0)
        return;
    const QPoint mouse = event->position().toPoint();
    const Anchor anchor = d_->anchorAt(mouse, d_->layout.pageNear(mouse + d_->scrollOffset()));
    d_->percent = std::clamp(zoomPercent() + steps * WheelStepPercent, MinPercent, MaxPercent);
    d_->mode = ZoomMode::Percent;
    d_->rezoom(anchor);
    d_->setCurrent(d_->pageAtTop());
    Q_EMIT zoomChanged();
}

void PageView::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_PageDown: verticalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepAdd); break;
    case Qt::Key_PageUp: verticalScrollBar()->triggerAction(QAbstractSlider::SliderPageStepSub); break;
    case Qt::Key_Down: verticalScrollBar()->triggerAction(QAbstractSlider::SliderSingleStepAdd); break;
    case Qt::Key_Up: verticalScrollBar()->triggerAction(QAbstractSlider::SliderSingleStepSub); break;
    case Qt::Key_Right: horizontalScrollBar()->triggerAction(QAbstractSlider::SliderSingleStepAdd); break;
    case Qt::Key_Left: horizontalScrollBar()->triggerAction(QAbstractSlider::SliderSingleStepSub); break;
    case Qt::Key_Home: goToPage(0); break;
    case Qt::Key_End: goToPage(pageCount() - 1); break;
    default: QAbstractScrollArea::keyPressEvent(event); return;
    }
    event->accept();
}

void PageView::scrollContentsBy(int, int)
{
    viewport()->update();
    if (!d_->placing)
        d_->setCurrent(d_->pageAtTop());
}
