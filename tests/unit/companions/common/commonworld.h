#pragma once
#include "companions/settings/common/commonstore.h"
#include "platform/basic/convert.h"
#include "settings/frmResolveRemovedItem.h"
#include "settings/SettingsValues.h"
#include "tests/unit/database/databaseworld.h"

namespace hourbook::tests {

using namespace Qt::StringLiterals;

/// A database with three lists and a person, and the dialog about removed values answered by the test.
class CommonWorld : public testing::Test {
 protected:
  CommonWorld() {
    db.createCurrent();
    shellValues().gListSeparator = u","_s;
    settings->showResolveRemovedItem = [this](frmResolveRemovedItem& form) {
      asked.append(form.lblValueToBeResolved.Caption());
      offered = form.cmbMoveChoice.Text();
      ASSERT_TRUE(onAsked) << "asked about " << qPrintable(asked.last());
      onAsked(form);
    };
  }
  ~CommonWorld() override { db.plan->clear(); }

  void run(const QString& sql) { db.other()->execute(sql); }
  /// The first column of a query's rows, joined.
  QString column(const QString& sql) {
    QStringList texts;
    for (const auto& row : db.other()->execute(sql).rows) texts.append(platform::basic::CStr(row.first()));
    return texts.join(u'|');
  }
  void fillDatabase() {
    run(u"insert into tblSettings (intCostCarrier, intReportTo, strReportToValue) values (2, 2, 'there')"_s);
    run(u"insert into tblMetaLists (strMetaListCaption, strMetaListCategoryCaption, "
        "strMetaListSuperCategoryCaption) values ('Customer', 'Branch', 'Region')"_s);
    run(u"insert into tblMetaLists (strMetaListCaption) values ('Task')"_s);
    run(u"insert into tblMetaLists (strMetaListCaption) values ('')"_s);
    run(u"insert into tblMeta1 (strName, strCategory, strSuperCategory, curRate, blnEnabled) values "
        "('Acme', 'Metal', 'North', 450.5, -1)"_s);
    run(u"insert into tblMeta1 (strName, curRate, blnEnabled) values ('Zeta', 100, 0)"_s);
    run(u"insert into tblMeta2 (strName, blnEnabled) values ('Support', -1)"_s);
    run(u"insert into tblPersons (strPersonName) values ('Ann')"_s);
  }
  void addReport(int customer) {
    run(u"insert into tblReports (numHours, intPersonID, intMeta1ID, intMeta2ID) values (1, 1, %1, 1)"_s.arg(
        customer));
  }
  ReportPlace place() const { return {2, db.folder.path() + u'\\'}; }
  CommonBuffer read() const { return readCommonSettings(place()); }
  /// Every row of every table, to compare the whole database.
  QString everything() {
    QString all;
    const auto session = db.other();
    for (const QString& table : session->tables())
      for (const auto& row : session->execute(u"select * from ["_s + table + u']').rows) {
        all += table;
        for (const auto& cell : row)
          all += u'|' + (platform::basic::IsNull(cell) ? u"null"_s : platform::basic::CStr(cell));
        all += u'\n';
      }
    return all;
  }

  ::tests::DatabaseWorld db;
  Shared<SettingsValues>::Scope settings;
  QStringList asked;
  QString offered;
  std::function<void(frmResolveRemovedItem&)> onAsked;
};

}  // namespace hourbook::tests
