#pragma once

#include "reports/PreparedReport.h"

#include <QAbstractScrollArea>

#include <memory>

// The pages of a prepared report one below the other, as a print preview shows
// them: zoom by percent, to the page width, to a whole page or to two pages
// side by side; only the visible pages are painted, from a small cache of
// rendered pages, so turning a page is immediate in a report of any length.
class PageView : public QAbstractScrollArea {
    Q_OBJECT

public:
    enum class ZoomMode { Percent, PageWidth, WholePage, TwoPages };

    explicit PageView(QWidget* parent = nullptr);
    ~PageView() override;

    // Shows another report; the current page and the zoom stay where they can.
    void setReport(std::shared_ptr<const PreparedReport> report);
    const PreparedReport* report() const;
    int pageCount() const;

    void setZoomPercent(int percent); // 10..400
    void setZoomMode(ZoomMode mode);
    ZoomMode zoomMode() const;
    int zoomPercent() const; // the effective zoom; in the fitting modes the current page's

    int currentPage() const; // 0-based: the page at the top of the view
    void goToPage(int page);

    // Goes to the found item's page and marks it until the next find.
    void showHit(const TextHit& hit);
    void clearHit();

    // How many pages were rendered since the view was made: a page painted
    // again from the cache does not count.
    int renderedPageCount() const;

Q_SIGNALS:
    void currentPageChanged(int page);
    void zoomChanged(); // also when Ctrl + the mouse wheel changed it

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    struct Private;
    std::unique_ptr<Private> d_;
};
