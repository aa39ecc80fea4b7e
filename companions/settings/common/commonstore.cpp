#include "companions/settings/common/commonstore.h"

#include "companions/settings/common/billingtable.h"
#include "companions/settings/common/commontexts.h"
#include "companions/settings/common/heldconnection.h"
#include "companions/settings/common/removedanswers.h"
#include "companions/settings/guarded.h"
#include "outlook/modItemProperties.h"
#include "platform/basic/convert.h"
#include "platform/basic/text.h"
#include "platform/sql/errors.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"

#include <QHash>

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::Failure;
using platform::basic::foldedKey;
namespace sql = platform::sql;
namespace texts = commontexts;

namespace {

const QString departmentKey = u"ADDepartment"_s;
constexpr qint32 targetServer = 3;

CommonList listOf(const cMetaDictionary& list) {
  CommonList result{list.Caption, list.CategoryCaption, list.SuperCategoryCaption, {}};
  for (const auto& meta : list.MetaDic->Items())
    result.values.append({meta->MetaName, meta->Category, meta->SuperCategory, meta->HourlyRate,
                          meta->Enabled, meta->MetaName});
  return result;
}

CommonContent contentOf(const cGlobalSettings& settings) {
  CommonContent content;
  content.costCarrier = settings.CostCarrier;
  content.reportTo = settings.ReportTo;
  content.reportToValue = settings.ReportToValue;
  for (int list = 0; list < 3; ++list) content.lists[list] = listOf(*settings.MetaDataLists.Item(list + 1));
  const auto department = settings.OtherSettings->GetValue(departmentKey, vbInteger);
  content.departmentAsked = platform::basic::CInt(department) == 1;
  return content;
}

/// Reads within the transaction that has begun, if one could.
CommonContent readContent(HeldConnection& database, const ReportPlace& place) {
  database.lend();
  cGlobalSettings& settings = database.settings();
  guarded([&] {
    settings.subSetupDBObjects(true, false, place.value);
    settings.subCloseDBObjects();
  });
  if (settings.MetaDataLists.Count() < 3)
    throw Failure(sql::errors::tableNotFound, texts::noListsTable.arg(placeName(place)));
  CommonContent content = contentOf(settings);
  if (database.isAccess()) content.billing = readBillingRow(database);
  return content;
}

/// Why the settings cannot be written; empty: they can. A statement that changes nothing asks for the right.
QString whyNotWritable(sql::Session& session) {
  const auto failure =
      tolerate([&] { session.execute(u"update tblSettings set intCostCarrier = intCostCarrier"_s); });
  return failure ? failure->description() : QString();
}

bool isRefusal(const Failure& failure) {
  return failure.number() == sql::errors::readOnly || failure.number() == sql::errors::noPermission;
}

/// What a database that is yet to be made will hold.
CommonBuffer newBuffer(const ReportPlace& place) {
  CommonBuffer buffer;
  buffer.isNew = true;
  buffer.billingPossible = place.choice != targetServer;
  buffer.place = placeName(place);
  buffer.stored.reportTo = place.choice;
  buffer.stored.reportToValue =
      place.choice == targetServer ? place.value : buffer.place + u'\\' + databaseFileName;
  buffer.stored.lists[0].caption = phrases().LNGCUSTOMER;
  buffer.stored.lists[1].caption = phrases().LNGTASK;
  buffer.edited = buffer.stored;
  return buffer;
}

/// A name that differs from the stored one in case alone keeps its row. The save would look for it exactly,
/// add a second row, and leave the first, which then hides the new one from every reader.
void applyChangesOfCase(sql::Session& session, const CommonContent& stored, const CommonContent& edited) {
  for (int list = 0; list < 3; ++list) {
    QHash<QString, QString> storedNames;
    for (const CommonValue& value : stored.lists[list].values)
      storedNames.insert(foldedKey(value.name), value.name);
    for (const CommonValue& value : edited.lists[list].values) {
      const QString before = storedNames.value(foldedKey(value.name), value.name);
      if (before == value.name) continue;
      // The embedded database compares without regard to case: of several such rows the readers see this one.
      session.execute(u"update tblMeta%1 set strName = ? where strName = ?"_s.arg(list + 1),
                      {value.name, before});
    }
  }
}

void fill(cGlobalSettings& settings, const CommonContent& content) {
  settings.CostCarrier = content.costCarrier;
  settings.ReportTo = content.reportTo;
  settings.ReportToValue = content.reportToValue;
  settings.MetaDataLists = {};
  for (int list = 0; list < 3; ++list) {
    const CommonList& from = content.lists[list];
    auto to = std::make_shared<cMetaDictionary>();
    to->Index = static_cast<qint16>(list + 1);
    to->Caption = from.caption;
    to->CategoryCaption = from.categoryCaption;
    to->SuperCategoryCaption = from.superCategoryCaption;
    for (const CommonValue& value : from.values)
      to->AddMeta(value.name, value.category, value.rate, 0, value.superCategory, value.enabled);
    settings.MetaDataLists.Add(to, u"Meta"_s + QString::number(list + 1));
  }
}

/// Only the setting that is edited here goes to the table; the rows of others stay as they are.
void fillOther(cOtherSettings& other, const CommonContent& stored, const CommonContent& edited) {
  other.dicValues->RemoveAll();
  if (stored.departmentAsked != edited.departmentAsked)
    other.SetValue(departmentKey, QString(edited.departmentAsked ? u"1"_s : u"0"_s));
}

void requireUnchanged(const CommonBuffer& buffer, const CommonContent& found) {
  CommonContent expected = buffer.stored;
  if (buffer.isNew) {  // where it leads to was settled when it was made
    expected.reportTo = found.reportTo;
    expected.reportToValue = found.reportToValue;
  }
  const QStringList changed = differences(expected, found);
  if (!changed.isEmpty())
    throw Failure(changedByOthersNumber, texts::changedByOthers.arg(changed.join(u", "_s)));
}

void save(HeldConnection& database, const CommonBuffer& buffer, const QList<RemovedAnswer>& answers) {
  applyChangesOfCase(database.session(), buffer.stored, buffer.edited);
  if (!(buffer.edited.billing == buffer.stored.billing)) writeBillingRow(database, buffer.edited.billing);
  cGlobalSettings& settings = database.settings();
  fill(settings, buffer.edited);
  fillOther(*settings.OtherSettings, buffer.stored, buffer.edited);
  const ScopedAnswers answering(buffer.removedValues(), answers);
  database.lend();
  bool saved = false;
  guarded([&] { saved = settings.SaveGlobalSettings(); });
  if (!saved) throw Failure(0, phrases().LNGFAILEDSAVESETTINGS);
}

}  // namespace

CommonBuffer readCommonSettings(const ReportPlace& place) {
  if (place.isNew) return newBuffer(place);
  HeldConnection database(place);
  CommonBuffer buffer;
  std::optional<sql::Transaction> transaction;
  const auto refused = tolerate([&] { transaction.emplace(database.session()); });
  if (refused && !isRefusal(*refused)) throw *refused;
  buffer.stored = buffer.edited = readContent(database, place);
  buffer.notWritable = refused ? refused->description() : whyNotWritable(database.session());
  buffer.billingPossible = database.isAccess();
  buffer.place = placeName(place);
  return buffer;
}

void writeCommonSettings(const ReportPlace& place, CommonBuffer& buffer,
                         const QList<RemovedAnswer>& answers) {
  HeldConnection database(place);
  sql::Transaction transaction(database.session());
  requireUnchanged(buffer, readContent(database, place));
  save(database, buffer, answers);
  transaction.commit();
  buffer.stored = buffer.edited;
  buffer.isNew = false;
  // What stays of it is seen by reading; that a reading fails now does not undo the save.
  tolerate([&] {
    const sql::Transaction rolledBack(database.session());
    buffer.stored = buffer.edited = readContent(database, place);
  });
}

}  // namespace hourbook
