#pragma once

#include <QByteArray>
#include <QString>

#include <memory>
#include <vector>

// A JSON object that keeps its keys in the order they were added; the registry
// is sent bodies with keys in a fixed order, which QJsonObject would sort.
class OrderedJson {
public:
    OrderedJson& add(const QString& key, const QString& text);
    OrderedJson& add(const QString& key, OrderedJson object);
    OrderedJson& addArray(const QString& key, std::vector<OrderedJson> objects);

    QByteArray toJson() const;

private:
    struct Member;
    std::vector<std::shared_ptr<const Member>> members_;
};
