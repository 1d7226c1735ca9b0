#pragma once

#include <QString>

// The text of a file as the program's readers take it: UTF-16 or UTF-8 by its byte-order
// mark, UTF-8 without one. Empty when the file cannot be read.
QString FileText(const QString &path);
