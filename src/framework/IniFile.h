#pragma once

#include <QString>

#include <vector>

// An initialisation file in Windows-1250: sections in brackets, key=value lines.
// Names compare without regard to case. Every write saves the file at once
// (CRLF line ends); a missing file or key gives the default, and a line that is
// neither a section, a key nor a comment is skipped but kept.
class IniFile {
public:
    explicit IniFile(QString path);

    const QString& path() const { return path_; }

    bool readBool(const QString& section, const QString& key, bool defaultValue) const;
    int readInteger(const QString& section, const QString& key, int defaultValue) const;
    QString readString(const QString& section, const QString& key, const QString& defaultValue) const;

    void writeInteger(const QString& section, const QString& key, int value);
    void writeString(const QString& section, const QString& key, const QString& value);
    void eraseSection(const QString& section);
    bool sectionExists(const QString& section) const;

private:
    struct Line {
        QString key; // empty for lines that are not key=value
        QString text;
    };
    struct Section {
        QString name;
        std::vector<Line> lines;
    };

    void load();
    void save() const;
    const Section* findSection(const QString& name) const;
    const QString* findValue(const QString& section, const QString& key) const;

    QString path_;
    std::vector<Section> sections_; // the first one, unnamed, holds lines before any section
};
