#include "registry/client/OrderedJson.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonValue>

struct OrderedJson::Member {
    QString key;
    enum class Kind { Text, Object, Array } kind;
    QString text;
    std::vector<OrderedJson> objects;
};

namespace {
QByteArray Quoted(const QString& text)
{
    // QJsonDocument knows the escaping rules; a one-element array borrows them.
    QByteArray array = QJsonDocument(QJsonArray{QJsonValue(text)}).toJson(QJsonDocument::Compact);
    return array.mid(1, array.size() - 2);
}
} // namespace

OrderedJson& OrderedJson::add(const QString& key, const QString& text)
{
    members_.push_back(std::make_shared<const Member>(Member{key, Member::Kind::Text, text, {}}));
    return *this;
}

OrderedJson& OrderedJson::add(const QString& key, OrderedJson object)
{
    members_.push_back(std::make_shared<const Member>(Member{key, Member::Kind::Object, {}, {std::move(object)}}));
    return *this;
}

OrderedJson& OrderedJson::addArray(const QString& key, std::vector<OrderedJson> objects)
{
    members_.push_back(std::make_shared<const Member>(Member{key, Member::Kind::Array, {}, std::move(objects)}));
    return *this;
}

QByteArray OrderedJson::toJson() const
{
    QByteArray out = "{";
    for (std::size_t i = 0; i < members_.size(); ++i) {
        const Member& m = *members_[i];
        if (i > 0)
            out += ',';
        out += Quoted(m.key) + ':';
        if (m.kind == Member::Kind::Text) {
            out += Quoted(m.text);
        } else if (m.kind == Member::Kind::Object) {
            out += m.objects.front().toJson();
        } else {
            out += '[';
            for (std::size_t j = 0; j < m.objects.size(); ++j)
                out += (j > 0 ? "," : "") + m.objects[j].toJson();
            out += ']';
        }
    }
    return out + '}';
}
