#include "outlook/modItemProperties.h"

#include "outlook/OutlookValues.h"
#include "platform/basic/convert.h"
#include "platform/basic/text.h"
#include "shell/modAssistant.h"
#include "shell/modErrorReport.h"
#include "shell/modFileHandling.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"

namespace hourbook {

using namespace Qt::StringLiterals;
using namespace platform::basic;
using platform::outlook::AppointmentItem;
using platform::outlook::MailItem;

namespace {

inline constexpr int pieceLength = 1000;

/// Are these two of one sign: halves of a character, or of a line break? A calendar keeps no half of either.
bool belongTogether(QChar before, QChar after) {
  return (before.isHighSurrogate() && after.isLowSurrogate()) || (before == u'\r' && after == u'\n');
}

/// Where the n-th piece of a long text begins. What belongs together goes into the later piece.
qsizetype pieceStart(const QString& text, qint32 index) {
  const qsizetype start = qMin(qsizetype(index) * pieceLength, text.size());
  const bool splits = start > 0 && start < text.size() && belongTogether(text[start - 1], text[start]);
  return splits ? start - 1 : start;
}

bool isEmptyText(const Value& value) {
  return IsEmpty(value) || CStr(value).isEmpty();
}

Value withoutProperty(int type, const Value& defaultValue) {
  switch (type) {
    case vbInteger:
      return IsNumeric(defaultValue) && CDbl(defaultValue) != 0 ? defaultValue : Value(qint16(0));
    case vbDate:
      return Date();  // kept: the default is not used
    case vbString:
      return CStr(defaultValue);
    case vbBoolean:
      // An empty value counts as numeric and gives nothing all the same.
      return !IsEmpty(defaultValue) && IsNumeric(defaultValue) ? Value(CBool(defaultValue)) : Value();
    default:
      return {};
  }
}

Value ofProperty(const Value& value, int type, const Value& defaultValue) {
  switch (type) {
    case vbInteger:
      return IsNumeric(value) ? value : Value(qint16(0));
    case vbDate:
      return IsDate(value) ? CDate(value) : Date();
    case vbString:
      return CStr(isEmptyText(value) && !isEmptyText(defaultValue) ? defaultValue : value);
    case vbBoolean:
      return CBool(value);
    default:
      return {};
  }
}

bool saveVcal(const AppointmentItem& appointment, const QString& path) {
  bool saved = false;
  tolerate([&] {
    const std::shared_ptr<MailItem> mail = appointment.ForwardAsVcal();
    if (mail->Attachments.empty()) return;
    mail->Attachments.front().SaveAsFile(platform::scripting::systemPath(path));
    saved = true;
  });
  return saved;
}

QString wholeFile(const QString& path) {
  QString content;
  tolerate([&] {
    const auto stream = shellValues().gFileSystem->OpenTextFile(path);
    content = stream->ReadAll();
    stream->Close();
  });
  return content;
}

}  // namespace

Value fncGetOutlookValue(AppointmentItem& item, const QString& property, int type,
                         const Value& defaultValue) {
  subLog(QStringLiteral("Reading the value of the Outlook property ") + property);
  Value result;
  tolerate([&] {
    const auto found = item.userProperties().Find(property);
    result = found ? ofProperty(found->Value(), type, defaultValue) : withoutProperty(type, defaultValue);
  });
  return result;
}

AppointmentItem& subFixLongProperty(AppointmentItem& item, const QString& text, const QString& property) {
  subLog(QStringLiteral("Entering subFixLongProperty to save ") + property);
  const auto step = [](const auto& statement) {
    if (tolerate(statement)) fncShowAssistantMessage(outlookValues().gOutlookApp, phrases().LNGCHECKPERM);
  };
  const auto set = [&](const QString& name, int type, const Value& value) {
    step([&] { item.userProperties().Add(name, type)->setValue(value); });
  };
  const auto last = static_cast<qint32>(roundHalfEven(static_cast<double>(text.size()) / pieceLength));
  for (qint32 index = 0; index <= last; ++index)
    set(property + QString::number(index), platform::outlook::olText,
        text.mid(pieceStart(text, index), pieceStart(text, index + 1) - pieceStart(text, index)));
  set(property + u"Count"_s, platform::outlook::olNumber, last);
  return item;
}

QString fncGetLongProperty(AppointmentItem& item, const QString& property) try {
  subLog(QStringLiteral("Entering fncGetLongProperty"));
  const qint32 count = CInt(fncGetOutlookValue(item, property + u"Count"_s, vbInteger));
  QString text;
  for (qint32 index = 0; index <= count; ++index)
    text += CStr(fncGetOutlookValue(item, property + QString::number(index), vbString));
  return text;
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("fncGetLongProperty"));
}

QString fncDescriptionOfVcal(const QString& vcalendar) {
  const QString start = QStringLiteral("DESCRIPTION;ENCODING=QUOTED-PRINTABLE:");
  const QString lineBreak = QStringLiteral("=0D=0A");
  // kept: without the start the search runs from behind where it would end if the text began with it;
  // positions count from 1 and a text that is not there has position 0
  const qsizetype from = (vcalendar.indexOf(start) + 1) + start.size() - 1;
  const qsizetype end = vcalendar.indexOf(lineBreak + vbCrLf, from);
  if (end < 0) return {};
  return vcalendar.mid(from, end - from).remove(u'=' + vbCrLf).replace(lineBreak, vbCrLf);
}

QString fncReadBodyThroughVcal(const AppointmentItem& appointment) {
  QString path;
  tolerate([&] { path = fncGetTempPath() + u"\\HBTemp.txt"_s; });
  // A file that was there already, and could not be replaced, holds another appointment's text.
  const QString content = saveVcal(appointment, path) ? wholeFile(path) : QString();
  tolerate([&] { shellValues().gFileSystem->DeleteFile(path, true); });
  return fncDescriptionOfVcal(content);
}

}  // namespace hourbook
