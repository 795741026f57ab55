#pragma once

#include <QImage>

#include <list>

// The pages the view rendered last, most recent first. A page is kept per
// size and marked item, so a zoom or a find renders it again while turning
// back to a page just seen costs nothing.
class PageCache {
public:
    struct Key {
        int page = 0;
        QSize size;
        int highlighted = -1;
        bool operator==(const Key&) const = default;
    };

    // At most `capacity` images, and no more bytes than `byteBudget` unless a single image is larger.
    PageCache(int capacity, qsizetype byteBudget) : capacity_(capacity), byteBudget_(byteBudget) {}

    QImage find(const Key& key); // a null image when the page is not kept
    void insert(const Key& key, const QImage& image);
    void clear() { entries_.clear(); }
    int size() const { return static_cast<int>(entries_.size()); }

private:
    struct Entry {
        Key key;
        QImage image;
    };

    qsizetype bytes() const;

    int capacity_;
    qsizetype byteBudget_;
    std::list<Entry> entries_;
};
