#pragma once
#include "platform/outlook/items.h"

namespace platform::outlook {

/// The mail as an internet message with CRLF line ends, marked as not yet sent.
QByteArray messageOf(const MailItem& mail);

/// A header's text: as it stands when it is short ASCII, else as encoded words. Line breaks become blanks.
QByteArray headerText(const QString& text, qsizetype nameLength);

}  // namespace platform::outlook
