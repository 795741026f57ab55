// Downloads the demo producer once, then stores the download in the archive of
// the given data folder again and again, printing a line after each commit,
// until it is killed.
#include "DemoDownload.h"
#include "core/archive/DownloadArchive.h"

#include <QCoreApplication>
#include <QTextStream>

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    const QDate reference(2026, 6, 15);
    DemoDownload d(app.arguments().value(1));
    IniFile(d.session.dataFolder().settingsFile()).writeInteger(u"ARCHIWUM"_s, u"Zachowaj"_s, 0);
    if (d.run(DemoData(reference, {400, 300, 300}), reference) != DownloadOutcome::Completed)
        return 1;
    DownloadArchive archive(d.session.dataFolder().archiveFile());
    QTextStream out(stdout);
    for (;;) {
        archive.store(d.session, 1000);
        out << "stored" << Qt::endl;
    }
}
