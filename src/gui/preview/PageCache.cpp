#include "gui/preview/PageCache.h"

#include <algorithm>

QImage PageCache::find(const Key& key)
{
    const auto found = std::find_if(entries_.begin(), entries_.end(), [&key](const Entry& e) { return e.key == key; });
    if (found == entries_.end())
        return {};
    entries_.splice(entries_.begin(), entries_, found);
    return entries_.front().image;
}

void PageCache::insert(const Key& key, const QImage& image)
{
    entries_.remove_if([&key](const Entry& e) { return e.key == key; });
    entries_.push_front(Entry{key, image});
    while (entries_.size() > 1 && (size() > capacity_ || bytes() > byteBudget_))
        entries_.pop_back();
}

qsizetype PageCache::bytes() const
{
    qsizetype total = 0;
    for (const Entry& entry : entries_)
        total += entry.image.sizeInBytes();
    return total;
}
