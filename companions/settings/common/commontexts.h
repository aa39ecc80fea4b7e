#pragma once
#include <QString>

// Every text of the page of the common settings. Field names double as accessible names, so they must say
// enough without the picture around them. "&" marks the mnemonic; it is taken off where a text is read aloud.
namespace hourbook::commontexts {

#define HOURBOOK_TEXT(name, text) inline const QString name = QStringLiteral(text)

HOURBOOK_TEXT(title, "Common settings");
HOURBOOK_TEXT(sections, "Sections of the common settings");

// ---- where they stand
HOURBOOK_TEXT(readAgain, "Read a&gain");
HOURBOOK_TEXT(placeText, "All users of %1 share these settings.");
HOURBOOK_TEXT(
    placeNew,
    "All users of the new database will share these settings. It is made when everything is saved.");
HOURBOOK_TEXT(unreachable, "The common settings cannot be read: %1");
HOURBOOK_TEXT(noDatabase, "there is no database in %1.");
HOURBOOK_TEXT(noListsTable, "the database in %1 has none.");
HOURBOOK_TEXT(aspPlace,
              "Reports go to an ASP page, so the database is looked for in the program's own folder.");
HOURBOOK_TEXT(readOnly, "You can look at the common settings but not change them: %1");
HOURBOOK_TEXT(
    changedByOthers,
    "Somebody else has changed the common settings since they were read (%1). Nothing has been saved. Use "
    "\"Read again\" to see what is stored now; what you changed here is lost then.");
HOURBOOK_TEXT(
    otherPlace,
    "Reports are to go elsewhere now, but these are still the common settings of %1. Use \"Read again\" "
    "to see those of the new place; what you changed here is lost then.");
HOURBOOK_TEXT(readAgainLoses, "Read the common settings again? What you changed on this page is lost.");
HOURBOOK_TEXT(saveFailed, "The common settings have not been saved: %1");
HOURBOOK_TEXT(notAnswered,
              "These removed values stay in their lists, as nothing was chosen for their reports: %1");

// ---- cost and target
HOURBOOK_TEXT(costTab, "Cost and target");
HOURBOOK_TEXT(costLabel, "Count costs &by");
HOURBOOK_TEXT(costNotSet, "Choose ...");
HOURBOOK_TEXT(costPerson, "the person's own rate");
HOURBOOK_TEXT(costOfList, "the rate of list %1 (%2)");
HOURBOOK_TEXT(costOfListPlain, "the rate of list %1");
HOURBOOK_TEXT(costNotChosen, "Choose how costs are counted.");
HOURBOOK_TEXT(costOfUnusedList, "List %1 is not in use, so it has no rates to count by.");
HOURBOOK_TEXT(targetLabel, "&Reports go to");
HOURBOOK_TEXT(targetNotSet, "Choose ...");
HOURBOOK_TEXT(targetAsp, "an ASP page");
HOURBOOK_TEXT(targetAccess, "an Access database");
HOURBOOK_TEXT(targetServer, "an SQL Server database");
HOURBOOK_TEXT(targetBilling, "the billing system");
HOURBOOK_TEXT(targetNotChosen, "Choose where reports go.");
HOURBOOK_TEXT(valueAspLabel, "&Address of the page's folder");
HOURBOOK_TEXT(valueAccessLabel, "P&ath of the database");
HOURBOOK_TEXT(valueServerLabel, "Conn&ection string");
HOURBOOK_TEXT(valueBillingLabel, "P&ath of the database");
HOURBOOK_TEXT(valueEmpty, "This must not be empty.");
HOURBOOK_TEXT(valueNoAddress, "An address begins with \"http://\" or \"https://\".");
HOURBOOK_TEXT(valueNoConnection, "A connection string begins with \"Provider=\".");
HOURBOOK_TEXT(tooLong, "This must not be longer than %1 characters.");
HOURBOOK_TEXT(unprinted, "This must not hold line breaks, tabs or other signs without a picture.");

// ---- lists
HOURBOOK_TEXT(listTab, "List %1: %2");
HOURBOOK_TEXT(listTabUnused, "List %1");
HOURBOOK_TEXT(captionLabel, "&Name of the list");
HOURBOOK_TEXT(categoryLabel, "Its categories are &called");
HOURBOOK_TEXT(superCategoryLabel, "Its s&uper categories are called");
HOURBOOK_TEXT(captionTip, "The third list is not in use without a name.");
HOURBOOK_TEXT(captionNeeded,
              "This list must have a name: without one, everybody would see it as \"%1\" again.");
HOURBOOK_TEXT(captionTwice, "List %1 has this name already.");
HOURBOOK_TEXT(newLabel, "Ne&w value");
HOURBOOK_TEXT(add, "Ad&d");
HOURBOOK_TEXT(rename, "Rena&me");
HOURBOOK_TEXT(remove, "Remo&ve");
HOURBOOK_TEXT(paste, "&Paste");
HOURBOOK_TEXT(addTip, "Adds the value to the list (Enter in the field)");
HOURBOOK_TEXT(renameTip, "Renames the current value (F2 in the table)");
HOURBOOK_TEXT(removeTip, "Removes the selected values (Delete in the table)");
HOURBOOK_TEXT(
    pasteTip,
    "Adds lines copied from a spreadsheet (Ctrl+V in the table): name, category, super category, rate, "
    "enabled");
HOURBOOK_TEXT(filterLabel, "&Filter");
HOURBOOK_TEXT(filterHint, "Part of a name or category");
HOURBOOK_TEXT(sortLabel, "Sor&t by");
HOURBOOK_TEXT(sortDown, "Downward&s");
HOURBOOK_TEXT(tableName, "Values of list %1");
HOURBOOK_TEXT(notAdded, "\"%1\" has been typed as a new value but not added. Add it or clear the field.");
HOURBOOK_TEXT(columnName, "Name");
HOURBOOK_TEXT(columnCategory, "Category");
HOURBOOK_TEXT(columnSuperCategory, "Super category");
HOURBOOK_TEXT(columnRate, "Rate");
HOURBOOK_TEXT(columnEnabled, "Enabled");
HOURBOOK_TEXT(yes, "Yes");
HOURBOOK_TEXT(no, "No");
HOURBOOK_TEXT(countShown, "%1 values");
HOURBOOK_TEXT(countFiltered, "%1 of %2 values");
HOURBOOK_TEXT(firstListEmpty, "The first list needs at least one value.");
HOURBOOK_TEXT(nameTwice, "The list has this value already.");
HOURBOOK_TEXT(nameOfValue, "\"%1\": %2");
HOURBOOK_TEXT(renamedNote,
              "Appointments that are marked with \"%1\" keep that name. When saving you are asked where its "
              "reports go.");
HOURBOOK_TEXT(storedName, "This name was stored by another program: %1");
HOURBOOK_TEXT(rateNoNumber, "A rate is a number such as %1.");
HOURBOOK_TEXT(rateDecimals, "A rate has at most four decimals.");
HOURBOOK_TEXT(rateTooLarge, "This rate is too large.");
HOURBOOK_TEXT(enabledUnknown, "Enabled is \"Yes\" or \"No\".");
HOURBOOK_TEXT(pasteNothing, "The clipboard holds no text to paste.");
HOURBOOK_TEXT(pasteRefused, "Nothing was pasted. %1");
HOURBOOK_TEXT(pasteLine, "Line %1: %2");
HOURBOOK_TEXT(pasteMore, "%1 more lines cannot be taken either.");
HOURBOOK_TEXT(pasteColumns, "A line has at most five columns.");
HOURBOOK_TEXT(pasted, "%1 values were added.");

// ---- other settings
HOURBOOK_TEXT(otherTab, "Other settings");
HOURBOOK_TEXT(department, "Each user must state a &department (ADDepartment)");
HOURBOOK_TEXT(departmentTip, "The department is stored with the person when a report is made.");

// ---- billing
HOURBOOK_TEXT(billingTab, "Billing");
HOURBOOK_TEXT(billingNeedsAccess,
              "The billing roads need an Access database. These settings stand in one of another kind.");
HOURBOOK_TEXT(roadLabel, "Billing s&ystem");
HOURBOOK_TEXT(roadPortal, "the StaffHarbour portal");
HOURBOOK_TEXT(roadQuickBooks, "QuickBooks on this machine");
HOURBOOK_TEXT(roadQuickBooksRemote, "QuickBooks through remote data sharing");
HOURBOOK_TEXT(roadOther, "another one (%1)");
HOURBOOK_TEXT(locationPortalLabel, "&Address of the portal");
HOURBOOK_TEXT(locationFileLabel, "Company &file");
HOURBOOK_TEXT(locationPlainLabel, "&Location");
HOURBOOK_TEXT(userPortalLabel, "&User of the portal");
HOURBOOK_TEXT(userQuickBooksLabel, "F&ull name of the employee");
HOURBOOK_TEXT(passwordLabel, "Pass&word");
HOURBOOK_TEXT(passwordTip, "It is stored readably in the database.");
HOURBOOK_TEXT(portalIncomplete, "The portal needs address, user and password before it takes reports.");
HOURBOOK_TEXT(fileMissing, "QuickBooks on this machine needs its company file before it takes reports.");
HOURBOOK_TEXT(portalNoSite, "The portal's address must hold its site code (\"sitecode=\").");
HOURBOOK_TEXT(lastDownloadLabel, "Last download");
HOURBOOK_TEXT(neverDownloaded, "none");
HOURBOOK_TEXT(download, "Down&load lists");
HOURBOOK_TEXT(downloadUnable,
              "This version of the program cannot download customers and items from the billing system. The "
              "lists are kept here.");
HOURBOOK_TEXT(downloadUnsaved, "Save the changes before you download.");

// ---- parts that somebody else may have changed
HOURBOOK_TEXT(partCost, "cost and target");
HOURBOOK_TEXT(partList, "list %1");
HOURBOOK_TEXT(partOther, "other settings");
HOURBOOK_TEXT(partBilling, "billing");

#undef HOURBOOK_TEXT

}  // namespace hourbook::commontexts
