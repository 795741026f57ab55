#pragma once

#include <QString>

using namespace Qt::StringLiterals;

// The one folder that holds everything the program keeps: settings, the
// producer list, exports, templates, PDFs and the error log.
class DataFolder {
public:
    // --data-dir, else the environment's HALVARN_DATA_DIR, else the user's
    // application data location.
    static QString resolve(const QString& commandLineDir);

    explicit DataFolder(QString root);

    // Creates the folder and its missing subfolders; false when it cannot.
    bool prepare() const;

    const QString& root() const { return root_; }
    QString settingsFile() const { return file(u"HALVARN.INI"_s); }
    QString commonSettingsFile() const { return file(u"COMMON.INI"_s); }
    QString producerListFile() const { return file(u"KNTRH_V002.DAT"_s); }
    QString exportFolder() const { return file(u"EXPORT"_s) + u'/'; }
    QString templatesFolder() const { return file(u"SZABLONY"_s) + u'/'; }
    QString pdfFolder() const { return file(u"PDF"_s) + u'/'; }
    QString useChangeJournal() const { return file(u"TUKU.LOG"_s); }
    QString errorLog() const { return file(u"BLEDY.LOG"_s); }
    QString crashRecord() const { return file(u"AWARIA.DAT"_s); }
    QString archiveFile() const { return file(u"ARCHIWUM.DB"_s); }
    QString screenshotFolder() const { return file(u"SCREENSHOTS"_s); }

private:
    QString file(const QString& name) const { return root_ + u'/' + name; }

    QString root_;
};

// Start-up switches of "COMMON.INI", section "PARAM".
struct CommonSettings {
    bool tester = false;
    bool torvLogin = false;
    QString screenshotFolder; // of error reports; empty: the data folder's "SCREENSHOTS"

    static CommonSettings read(const QString& path);
};
