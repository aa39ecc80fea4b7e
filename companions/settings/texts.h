#pragma once
#include <QString>

// The texts of the settings program that the phrase table has none for. They stand here alone, so that a
// translation has one place to begin with. "%1" and "%2" are filled in where they are used.
namespace hourbook::texts {

using namespace Qt::StringLiterals;

// The window
inline const QString windowTitle = u"Hourbook Settings"_s;
inline const QString pages = u"Pages"_s;
inline const QString saveFailed = u"Nothing was saved. %1"_s;
inline const QString undoFailed = u"What had been written before could not be taken back: %1"_s;
inline const QString changedMeanwhile =
    u"Another program has changed the settings since they were read here: %1. Keep what this window holds "
    u"and "
    "write it over them, or read them anew and lose what you have changed here?"_s;
inline const QString keepMine = u"Keep mine"_s;
inline const QString readAnew = u"Read anew"_s;
inline const QString keptMeanwhile =
    u"The calendar \"%1\" holds settings already, kept there by another machine or at another time. Take "
    u"them "
    u"over into this window, or replace them by what the window holds?"_s;
inline const QString takeOverAnswer = u"Take them over"_s;
inline const QString replaceAnswer = u"Replace them"_s;
inline const QString discard = u"There are changes that are not saved. Close the window without them?"_s;
inline const QString discardAnswer = u"Close without saving"_s;
inline const QString newNeedsCommon =
    u"A new database needs the lists and the rule of cost that all share; set them here."_s;
inline const QString problemOnPage = u"%1: %2"_s;
inline const QString placeConfiguration = u"the calendars (platform.ini)"_s;
inline const QString placeRegistry = u"the personal settings (registry.ini)"_s;
inline const QString placeAppointment = u"the settings kept in the calendar"_s;

// First start
inline const QString firstQuestion = u"There are no settings yet."_s;
inline const QString firstDetail =
    u"Hourbook can start on a sample, with appointments and a database of its own, and leave your calendar "
    "alone. Or choose your own calendar and database now."_s;
inline const QString trySample = u"Try the sample"_s;
inline const QString setUp = u"Set up my own"_s;

// Calendar
inline const QString calendarPage = u"Calendar"_s;
inline const QString personName = u"Your name, as the reports carry it"_s;
inline const QString calendars = u"Calendars"_s;
inline const QString addFolder = u"Add folder …"_s;
inline const QString addFile = u"Add file …"_s;
inline const QString remove = u"Remove"_s;
inline const QString calendarName = u"Name of the calendar"_s;
inline const QString calendarPath = u"Folder with .ics files, or one .ics file"_s;
inline const QString choose = u"Choose …"_s;
inline const QString readOnly = u"Only read it"_s;
inline const QString reportFrom = u"Report from this calendar"_s;
inline const QString keepInCalendar = u"Keep a copy of the settings in this calendar, on 1 January 2050"_s;
inline const QString keepIsThere =
    u"The calendar holds a copy already; the report program keeps it up to date, too."_s;
inline const QString keepNotPossible = u"This calendar is only read, so no copy can be kept in it."_s;
inline const QString keepTorn = u"The copy in the calendar is damaged (%1). It is written anew with OK."_s;
inline const QString keepTornAndUsed =
    u"The copy of the settings in the calendar is damaged (%1), so nothing was taken from it. It is written anew with OK."_s;
inline const QString takeOver = u"Take over the settings kept in this calendar"_s;
inline const QString takenOver = u"Taken over. They are written with OK."_s;
inline const QString nothingKept = u"This calendar holds no settings."_s;
inline const QString isOpenMark = u"%1 (reported from)"_s;
inline const QString isReadOnlyMark = u"%1 (only read)"_s;
inline const QString newCalendarName = u"Calendar"_s;
inline const QString calendarFilter = u"Calendar (*.ics)"_s;

inline const QString noPersonName = u"Without a name, nobody could tell whose the reports are."_s;
inline const QString noCalendar = u"Add the calendar that you report from."_s;
inline const QString noOpenCalendar = u"Say which of the calendars you report from."_s;
inline const QString pathMissing = u"Choose a folder or a file."_s;
inline const QString pathNotThere = u"%1 does not exist."_s;
inline const QString pathNotReadable = u"You may not read %1."_s;
inline const QString pathNotWritable =
    u"You may not write to %1, where reported appointments are stamped. Choose another, or tick \"Only read it\"."_s;
inline const QString pathNoCalendar = u"%1 is no calendar: the file does not begin with BEGIN:VCALENDAR."_s;
inline const QString folderNoCalendar = u"%1 holds files, but no calendar item (.ics) among them."_s;
inline const QString folderIsEmpty = u"The folder is empty: a calendar without appointments."_s;
inline const QString folderHolds = u"Calendar files in this folder: %1"_s;
inline const QString fileIsCalendar = u"The file is a calendar."_s;
inline const QString pathTwice = u"The calendar \"%1\" has this folder or file already."_s;
inline const QString pathIsSpecial = u"%1 is neither a folder nor a file."_s;
inline const QString controlSign =
    u"A line break, a tab or another sign without a picture cannot be stored here."_s;

// Reports go to
inline const QString targetPage = u"Reports"_s;
inline const QString reportsGoTo = u"Reports go to"_s;
inline const QString targetBilling = u"Report to a billing system"_s;
inline const QString reasonAsp = u"This version cannot report to an ASP page."_s;
inline const QString reasonBilling = u"This version cannot report to a billing system."_s;
inline const QString databaseFolder = u"Folder of the database (Hourbook3.mdb)"_s;
inline const QString makeDatabase = u"Make a new database in this folder"_s;
inline const QString willBeMade = u"The database is made with OK."_s;
inline const QString databaseThere = u"The folder holds a database."_s;
inline const QString testConnection = u"Test the connection"_s;
inline const QString testing = u"Testing …"_s;
inline const QString testReports = u"Time reports in the database: %1"_s;
inline const QString noAnswer = u"There was no answer within %1 seconds."_s;
inline const QString notMadeYet = u"The database is only made with OK. The folder can be written to."_s;
inline const QString onlyReadable = u"%1 may only be read, so nothing could be reported into it."_s;
inline const QString noServerDriver =
    u"This installation has no driver for SQL Server (SQLOLEDB.1). Choose the Access database."_s;
inline const QString noDriverFor = u"This installation has no driver for \"%1\". Choose another database."_s;
inline const QString passwordNote =
    u"The password stands in plain text in %1, which only you can read: the connection text leaves no other way."_s;
inline const QString byLogin = u"MS SQL Server, by its name"_s;
inline const QString byText = u"Any server, by a connection text"_s;
inline const QString connectionText = u"Connection text"_s;
inline const QString connectionTextHint =
    u"As the driver takes it, for instance for PostgreSQL: Provider=PostgreSQL;Data Source=server;Initial "
    u"Catalog=database;User ID=user;Password=password"_s;
inline const QString furtherParts = u"Kept from the stored connection text: %1"_s;
inline const QString setUpDatabase = u"Set up a database …"_s;
inline const QString setUpDatabaseTip =
    u"Asks which kind of database is to be used from this folder, and makes it or logs on to it at once."_s;
inline const QString setUpCancelled = u"No database was chosen."_s;
inline const QString accessMade = u"The database was made in this folder."_s;
inline const QString serverChosen = u"The folder %1 leads to this server now (HourbookConnection.txt)."_s;

inline const QString folderMissing = u"Choose the folder of the database."_s;
inline const QString folderRelative = u"Give the whole path, beginning with \"/\"."_s;
inline const QString folderNotThere =
    u"The folder %1 does not exist. Choose another, or tick \"Make a new database in this folder\"."_s;
inline const QString pagesTip = u"Ctrl+Page Up and Ctrl+Page Down go through the pages."_s;
inline const QString folderNotWritable = u"You may not write to the folder %1."_s;
inline const QString folderIsFile = u"%1 is a file and no folder."_s;
inline const QString databaseNotThere =
    u"There is no Hourbook3.mdb in this folder. Choose another, tick \"Make a new database in this folder\", or set one up."_s;
inline const QString folderLeadsToServer =
    u"This folder leads to a database on a server (HourbookConnection.txt). Press \"Set up a database …\" to use it."_s;
inline const QString databaseExists =
    u"This folder holds a database already, which is left alone. Choose another folder, or use the one that is there."_s;
inline const QString databaseIsAccess =
    u"%1 is a real Microsoft Access file, which this version cannot use. Choose another folder."_s;
inline const QString databaseIsNone =
    u"%1 is no database that this version can use. Choose another folder."_s;
inline const QString databaseNotReadable = u"You may not read %1."_s;
inline const QString serverMissing = u"Name the server."_s;
inline const QString serverDatabaseMissing = u"Name the database on the server."_s;
inline const QString userMissing = u"Name the user, or tick the trusted connection."_s;
inline const QString connectionTextMissing = u"Type the connection text."_s;
inline const QString connectionTextBeginning = u"A connection text begins with \"Provider=\"."_s;
inline const QString connectionTextForm =
    u"A connection text is made of pairs like \"Data Source=server\", with \";\" between them."_s;
inline const QString connectionTextServer = u"The connection text names no server (\"Data Source=\")."_s;
inline const QString connectionTextIsAccess =
    u"This is the text of an Access database. Choose Access above, and the folder of the database."_s;
inline const QString connectionSign = u"\";\", \"=\" and quotes cannot stand in a connection text."_s;

// Appointments
inline const QString leaveOut = u"Leave out of the list"_s;
inline const QString startView = u"Start"_s;
inline const QString startGrid = u"Begin with the week grid"_s;
inline const QString wholeDayHours = u"Hours of a whole day"_s;
inline const QString lunchHours = u"Hours of lunch"_s;
inline const QString wholeDayHint = u"An appointment of whole days counts so many hours a day."_s;
inline const QString lunchHint = u"Taken off appointments of more than 7 hours; not off whole days."_s;
inline const QString notANumber = u"\"%1\" is not a number. Write it as %2."_s;
inline const QString wholeDayRange = u"A whole day has more than 0 and at most 24 hours."_s;
inline const QString lunchRange = u"Lunch takes 0 to 7 hours."_s;

// Lists and rate
inline const QString listsPage = u"My lists and rate"_s;
inline const QString personalRate = u"My rate an hour"_s;
inline const QString rateRange = u"A rate is 0 or more, and at most %1."_s;
inline const QString rateDecimals = u"A rate has at most four decimals."_s;
inline const QString lists = u"Lists"_s;
inline const QString addList = u"Add a list"_s;
inline const QString removeList = u"Remove the list"_s;
inline const QString listName = u"Name of the list"_s;
inline const QString values = u"Values"_s;
inline const QString newValue = u"New value"_s;
inline const QString addValue = u"Add the value"_s;
inline const QString removeValue = u"Remove the value"_s;
inline const QString moveUp = u"Move up"_s;
inline const QString moveDown = u"Move down"_s;
inline const QString takeCommon = u"Take over the common lists"_s;
inline const QString newListName = u"List %1"_s;
inline const QString noLists = u"Without a list no appointment can be marked. Add one."_s;
inline const QString tooManyLists = u"There are at most three lists."_s;
inline const QString noValues =
    u"Add a value, or remove the list: without a value, no appointment could be marked completely."_s;
inline const QString notCommon =
    u"Not in the common list, so appointments marked with it cannot be reported: %1"_s;
inline const QString otherListName = u"The common list in this place is called \"%1\"."_s;

// What was read
inline const QString pieceMissing = u"the piece \"%1\" is missing"_s;
inline const QString linesMissing = u"it has fewer than seven lines"_s;
inline const QString endMissing = u"its last line has no end"_s;
inline const QString lineUnreadable = u"line %1 reads \"%2\""_s;
inline const QString unreadable =
    u"The stored value \"%1\" cannot be used (%2); the usual one stands here instead."_s;
inline const QString notABoolean = u"neither True nor False"_s;
inline const QString notNumeric = u"not a number"_s;
inline const QString listUnreadable = u"The stored lists are damaged: %1"_s;

}  // namespace hourbook::texts
