#pragma once

#include <QString>

// A template file as the editor reads and writes it.

// The file's text, UTF-8, with a stray 8-bit byte of an old file read as Windows-1250 and
// line breaks as "\n". Throws TemplateError when the file cannot be read.
QString ReadTemplateText(const QString& path);

// The shipped template of that file name, from the program's resources; an empty text when
// the program ships none of that name.
QString ShippedTemplateText(const QString& fileName);

// Writes the text as UTF-8 over the file, first keeping the file's previous version in
// path + ".bak" (replacing an older one). Both writes are atomic. Throws FileWriteError.
void SaveTemplateText(const QString& path, const QString& text);
