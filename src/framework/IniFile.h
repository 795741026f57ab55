#pragma once

#include <QString>
#include <QStringList>

#include <vector>

// An initialisation file in Windows-1250: sections in brackets, key=value lines.
// A file that starts with a UTF-8 byte-order mark is read as UTF-8.
// Names compare without regard to case. Every write saves the file at once
// (CRLF line ends), whole or not at all, applied to the file as it is then and
// one writer at a time; a missing file or key gives the default, and a line
// that is neither a section, a key nor a comment is skipped but kept.
class IniFile {
public:
    explicit IniFile(QString path);

    const QString& path() const { return path_; }

    bool readBool(const QString& section, const QString& key, bool defaultValue) const;
    int readInteger(const QString& section, const QString& key, int defaultValue) const;
    // A value that is not a whole number within the range gives the default and
    // a line for the user naming the key and the value.
    struct Range {
        int least;
        int most;
    };
    int readInteger(const QString& section, const QString& key, int defaultValue, Range range,
                    QStringList& problems) const;
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
    class FileLock lockAndReload();
    const Section* findSection(const QString& name) const;
    const QString* findValue(const QString& section, const QString& key) const;

    QString path_;
    std::vector<Section> sections_; // the first one, unnamed, holds lines before any section
};
