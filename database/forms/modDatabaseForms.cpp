#include "database/forms/modDatabaseForms.h"

#include "database/forms/frmChooseConnectionWindow.h"
#include "database/forms/frmSQLLogonWindow.h"

#include <QApplication>

namespace hourbook {

namespace {

ConnectionChoice askWhichDatabase(const QString& strSQLScriptFileName) {
  frmChooseConnection form;
  form.strSQLScriptFileName = strSQLScriptFileName;
  // kept: the box for example data is offered, though nothing loads any yet; who reads its answer is to come
  subShowChooseConnection(form);
  return {form.intConnectionOption, form.blnLoadExampleData};
}

}  // namespace

void subShowChooseConnection(frmChooseConnection& form) {
  frmChooseConnectionWindow window(form, QApplication::activeWindow());
  window.exec();
}

void subShowSQLLogon(frmSQLLogon& form) {
  form.Show([](frmSQLLogon& shown) {
    frmSQLLogonWindow window(shown, QApplication::activeWindow());
    window.exec();
  });
}

void subUseDatabaseForms(DatabaseValues& values) {
  values.blnMayCreateDatabase = true;
  values.frmChooseConnection = askWhichDatabase;
  values.frmSQLLogon = subShowSQLLogon;
}

}  // namespace hourbook
