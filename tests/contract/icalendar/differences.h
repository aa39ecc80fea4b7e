#pragma once
#include <QString>

// Files that the other reader understands differently, and why we do not follow it. Empty: it does not.
QString whyEventsDiffer(const QString& file);
QString whyCountsDiffer(const QString& file);
