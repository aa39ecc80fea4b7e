#include "platform/locale/table.h"

#include <algorithm>
#include <iterator>

namespace platform::locale {

namespace {

constexpr std::array<const char16_t*, 7> kEnglishDays{u"Mon", u"Tue", u"Wed", u"Thu", u"Fri", u"Sat", u"Sun"};
constexpr std::array<const char16_t*, 7> kFrenchDays{u"lun.", u"mar.", u"mer.", u"jeu.",
                                                     u"ven.", u"sam.", u"dim."};
constexpr std::array<const char16_t*, 7> kGermanDays{u"Mo", u"Di", u"Mi", u"Do", u"Fr", u"Sa", u"So"};
constexpr std::array<const char16_t*, 7> kGermanDaysWithPoint{u"Mo.", u"Di.", u"Mi.", u"Do.",
                                                              u"Fr.", u"Sa.", u"So."};
constexpr std::array<const char16_t*, 7> kDutchDays{u"ma", u"di", u"wo", u"do", u"vr", u"za", u"zo"};
constexpr std::array<const char16_t*, 7> kItalianDays{u"lun", u"mar", u"mer", u"gio", u"ven", u"sab", u"dom"};
constexpr std::array<const char16_t*, 7> kPortugueseDays{u"seg", u"ter",      u"qua", u"qui",
                                                         u"sex", u"s\u00e1b", u"dom"};

// The separator follows the decimal sign (";" beside a comma, "," beside a point), but for the three
// countries that write a decimal point and are used to ";" all the same: Switzerland's de, fr and it.
const Row kRows[] = {
    {"cs_CZ",
     1029,
     u";",
     u",",
     u"\u00a0",
     u"dd.MM.yyyy",
     {u"po", u"\u00fat", u"st", u"\u010dt", u"p\u00e1", u"so", u"ne"}},
    {"da_DK",
     1030,
     u";",
     u",",
     u".",
     u"dd-MM-yyyy",
     {u"ma", u"ti", u"on", u"to", u"fr", u"l\u00f8", u"s\u00f8"}},
    {"nl_NL", 1043, u";", u",", u".", u"d-M-yyyy", kDutchDays},
    {"nl_BE", 2067, u";", u",", u".", u"d/MM/yyyy", kDutchDays},
    {"en_US", 1033, u",", u".", u",", u"M/d/yyyy", kEnglishDays},
    {"en_GB", 2057, u",", u".", u",", u"dd/MM/yyyy", kEnglishDays},
    {"en_AU", 3081, u",", u".", u",", u"d/MM/yyyy", kEnglishDays},
    {"en_CA", 4105, u",", u".", u",", u"yyyy-MM-dd", kEnglishDays},
    {"fi_FI", 1035, u";", u",", u"\u00a0", u"d.M.yyyy", {u"ma", u"ti", u"ke", u"to", u"pe", u"la", u"su"}},
    {"fr_FR", 1036, u";", u",", u"\u202f", u"dd/MM/yyyy", kFrenchDays},
    // The system shows two digits of the year here. They would put 2030 into 1930 when a date is read back,
    // so a fetch that reaches that year would find nothing.
    {"fr_BE", 2060, u";", u",", u"\u202f", u"dd-MM-yyyy", kFrenchDays},
    {"fr_CA", 3084, u";", u",", u"\u00a0", u"yyyy-MM-dd", kFrenchDays},
    {"fr_CH", 4108, u";", u".", u"\u202f", u"dd.MM.yyyy", kFrenchDays},
    {"de_DE", 1031, u";", u",", u".", u"dd.MM.yyyy", kGermanDays},
    {"de_CH", 2055, u";", u".", u"\u2019", u"dd.MM.yyyy", kGermanDaysWithPoint},
    {"de_AT", 3079, u";", u",", u"\u00a0", u"dd.MM.yyyy", kGermanDaysWithPoint},
    {"el_GR",
     1032,
     u";",
     u",",
     u".",
     u"d/M/yyyy",
     {u"\u0394\u03b5\u03c5", u"\u03a4\u03c1\u03b9", u"\u03a4\u03b5\u03c4", u"\u03a0\u03b5\u03bc",
      u"\u03a0\u03b1\u03c1", u"\u03a3\u03b1\u03b2", u"\u039a\u03c5\u03c1"}},
    {"it_IT", 1040, u";", u",", u".", u"dd/MM/yyyy", kItalianDays},
    {"it_CH", 2064, u";", u".", u"\u2019", u"dd.MM.yyyy", kItalianDays},
    {"nb_NO",
     1044,
     u";",
     u",",
     u"\u00a0",
     u"dd.MM.yyyy",
     {u"man.", u"tir.", u"ons.", u"tor.", u"fre.", u"l\u00f8r.", u"s\u00f8n."}},
    {"pt_PT", 2070, u";", u",", u"\u00a0", u"dd/MM/yyyy", kPortugueseDays},
    {"pt_BR", 1046, u";", u",", u".", u"dd/MM/yyyy", kPortugueseDays},
    {"sl_SI",
     1060,
     u";",
     u",",
     u".",
     u"d. MM. yyyy",
     {u"pon.", u"tor.", u"sre.", u"\u010det.", u"pet.", u"sob.", u"ned."}},
    {"es_ES",
     3082,
     u";",
     u",",
     u".",
     u"dd/MM/yyyy",
     {u"lu.", u"ma.", u"mi.", u"ju.", u"vi.", u"s\u00e1.", u"do."}},
    {"es_MX",
     2058,
     u",",
     u".",
     u",",
     u"dd/MM/yyyy",
     {u"lun.", u"mar.", u"mi\u00e9.", u"jue.", u"vie.", u"s\u00e1b.", u"dom."}},
    {"sv_SE",
     1053,
     u";",
     u",",
     u"\u00a0",
     u"yyyy-MM-dd",
     {u"m\u00e5n", u"tis", u"ons", u"tor", u"fre", u"l\u00f6r", u"s\u00f6n"}},
    {"tr_TR",
     1055,
     u";",
     u",",
     u".",
     u"d.MM.yyyy",
     {u"Pzt", u"Sal", u"\u00c7ar", u"Per", u"Cum", u"Cmt", u"Paz"}},
    {"ru_RU",
     1049,
     u";",
     u",",
     u"\u00a0",
     u"dd.MM.yyyy",
     {u"\u041f\u043d", u"\u0412\u0442", u"\u0421\u0440", u"\u0427\u0442", u"\u041f\u0442", u"\u0421\u0431",
      u"\u0412\u0441"}},
    {"pl_PL",
     1045,
     u";",
     u",",
     u"\u00a0",
     u"dd.MM.yyyy",
     {u"pon.", u"wt.", u"\u015br.", u"czw.", u"pt.", u"sob.", u"niedz."}},
};

struct Number {
  const char* name;
  qint32 lcid;
};

const Number kNumbersWithoutRow[] = {
    {"de_LU", 4103},  {"de_LI", 5127},  {"fr_LU", 5132},  {"fr_MC", 6156},  {"es_GT", 4106},
    {"es_CR", 5130},  {"es_PA", 6154},  {"es_DO", 7178},  {"es_VE", 8202},  {"es_CO", 9226},
    {"es_PE", 10250}, {"es_AR", 11274}, {"es_EC", 12298}, {"es_CL", 13322}, {"es_UY", 14346},
    {"es_PY", 15370}, {"es_BO", 16394}, {"es_SV", 17418}, {"es_HN", 18442}, {"es_NI", 19466},
    {"es_PR", 20490}, {"es_US", 21514}, {"nn_NO", 2068},  {"sv_FI", 2077},  {"en_NZ", 5129},
    {"en_IE", 6153},  {"en_ZA", 7177},
};

// Spelt out, as the first row of a language need not be the country one would expect of it.
const Number kNumbersOfLanguages[] = {
    {"cs", 1029}, {"da", 1030}, {"nl", 1043}, {"en", 1033}, {"fi", 1035}, {"fr", 1036},
    {"de", 1031}, {"el", 1032}, {"it", 1040}, {"nb", 1044}, {"pt", 2070}, {"sl", 1060},
    {"es", 3082}, {"sv", 1053}, {"tr", 1055}, {"ru", 1049}, {"pl", 1045},
};

template <class Range>
auto findByName(const Range& range, const QString& name) {
  return std::find_if(std::begin(range), std::end(range),
                      [&](const auto& entry) { return name == QLatin1String(entry.name); });
}

}  // namespace

const Row* rowOf(const QString& name) {
  const auto found = findByName(kRows, name);
  return found == std::end(kRows) ? nullptr : &*found;
}

const std::array<const char*, 29>& rowNames() {
  static const std::array<const char*, 29> names = [] {
    std::array<const char*, 29> all{};
    static_assert(std::size(kRows) == 29);
    std::transform(std::begin(kRows), std::end(kRows), all.begin(), [](const Row& row) { return row.name; });
    return all;
  }();
  return names;
}

qint32 lcidWithoutRow(const QString& name) {
  if (const auto found = findByName(kNumbersWithoutRow, name); found != std::end(kNumbersWithoutRow))
    return found->lcid;
  const auto language = findByName(kNumbersOfLanguages, name.section(u'_', 0, 0));
  return language == std::end(kNumbersOfLanguages) ? 1033 : language->lcid;
}

}  // namespace platform::locale
