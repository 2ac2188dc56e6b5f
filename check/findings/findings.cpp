#include "check/findings/findings.h"

#include <QLocale>

#include <algorithm>
#include <array>

namespace {

using enum FindingId;

constexpr Targets none = 0;
constexpr Targets sas = only(Target::Sas);
constexpr Targets sql = only(Target::Sql);
constexpr Targets vba = only(Target::Vba);
constexpr Targets python = only(Target::Python);
constexpr Targets html = only(Target::Html);
constexpr Targets all = allTargets;

constexpr RowScope uncounted = RowScope::None;
constexpr RowScope counted = RowScope::Counted;
constexpr RowScope required = RowScope::Required;

// In the order in which they are reported.
// clang-format off
constexpr FindingKind kinds[] = {
    // --- What differs between targets
    {LowestSegment, u"lowest-segment", sql | vba | python, sql | vba | python, counted,
     u"Scores between the two lowest points of the probability table get probability 0.",
     u"Add two points to the table, below all possible scores and with the probability of its lowest point.", u"manual.md"},
    {LowestPoint, u"lowest-point", sas | sql | vba | python, sas | sql | vba | python, counted,
     u"A score that equals the lowest table point to the last digit gets probability 0.",
     u"Add two points to the table, below all possible scores and with the probability of its lowest point.", u"manual.md"},
    {RecodingWithoutCoefficient, u"recoding-without-coefficient", all, none, uncounted,
     u"SAS, Excel VBA and Python do not score the recoding; SQL and HTML reject the document.",
     u"Give the recoding the coefficient 0, or delete it.", u"manual.md"},
    {CoefficientWithoutRecoding, u"coefficient-without-recoding", all, vba | python, uncounted,
     u"SAS rejects the document; SQL and HTML ignore the coefficient. In Excel VBA and Python it multiplies the next term; as the last term it is a syntax error.",
     u"Delete the coefficient.", u"manual.md"},
    {EqualCoefficients, u"equal-coefficients", sql | html, sql | html, uncounted,
     u"Several coefficients share a number. SQL uses the last, HTML the first; the other targets add them.",
     u"Replace them with one coefficient, their sum.", u"manual.md"},
    {EqualNumbers, u"equal-numbers", sql | html, sql, uncounted,
     u"Several recodings share a number. SQL adds them, and HTML scores wrongly; the other targets use the last.",
     u"Give each recoding its own number.", u"manual.md"},
    {SingleBound, u"single-bound", all, html, counted,
     u"A value that equals the only bound scores as missing, in HTML as above the bound.",
     u"Add a second bound, with the same score on both sides.", u"manual.md"},
    {BoundDigits, u"bound-digits", all, all, counted,
     u"The code has bounds, table points and, in SQL, missing codes with 16 digits, in teradata with 15. A value between the written number and the exact one falls on the other side.",
     u"Round these numbers in the document to 15 digits.", u"manual.md"},
    {OtherBlanks, u"other-blanks", sas | sql | vba | python, sas | sql | vba | python, required,
     u"A text has tabs or no-break spaces around it. The model removes tabs, Python removes both; SAS, SQL and Excel VBA remove neither, so the text scores as unlisted.",
     u"Remove them from the data.", u"manual.md"},
    {NanCell, u"nan-cell", sql | vba | html, sql | vba | html, required,
     u"A numeric cell holds NaN or an infinity. For the model, only NaN is missing. PostgreSQL and DuckDB read NaN, and HTML reads both, as above the last bound; Excel VBA reads both as missing.",
     u"Turn such cells into missing values before scoring, in PostgreSQL with nullif(income, 'NaN').", u"manual.md"},
    {NotListed, u"not-listed", all, none, required,
     u"A text is not in the list of its column. It scores as missing, without a warning.",
     u"Check whether the category is new or has another name in the data.", u"manual.md"},
    // --- SAS
    {MissingCodesLine, u"missing-codes-line", sas, none, uncounted,
     u"The missing-value test is incomplete: its opening is absent and it omits the last code. The script does not run.",
     u"Repair the code with python3 -m scorewright.repair.", u"sas.md"},
    {MissingCodesDigits, u"missing-codes-digits", sas | vba | python, sas | vba | python, counted,
     u"Missing codes are written with 6 significant digits. A longer code does not match and scores as a number.",
     u"Repair SAS and Python code with python3 -m scorewright.repair; in Excel VBA, write the code in full by hand.", u"manual.md"},
    {MissingCodesName, u"missing-codes-name", sql | vba | python, sql | vba | python, counted,
     u"The target looks up missing codes under another name than the document lists, and finds other codes or none.",
     u"Turn the codes into missing values before scoring, or use only letters, digits and _ in the column's name.", u"manual.md"},
    {BooleanDigits, u"boolean-digits", sas, sas, counted,
     u"The scores of the boolean column are written with 6 significant digits.",
     u"Write them in full by hand where that matters.", u"sas.md"},
    {ValuesAsNumbers, u"values-as-numbers", sas, sas, counted,
     u"All values consist of digits and full stops. SAS compares them as numbers, so 1.0 matches 1, and logs the conversion.",
     u"Write all numbers in the column in the same format.", u"sas.md"},
    {EmptyNumber, u"empty-number", sas, none, uncounted,
     u"In a list of numbers, a value is empty or not a number, such as 1.2.3. It is written without quotation marks, so the script does not run.",
     u"Delete empty values from the document; they score as missing anyway. For other values, quote the whole list by hand.", u"sas.md"},
    {QuoteInValue, u"quote-in-value", sas | vba, none, uncounted,
     u"A quotation mark in a value is written as \\\", which ends the text: SAS and Excel VBA reject the line.",
     u"Write \"\" by hand, or remove the quotation mark from data and document.", u"manual.md"},
    {LongName, u"long-name", sas | vba | python, none, uncounted,
     u"The name of the recoded variable is truncated to 31 characters.",
     u"Identify the variable by the number in its name.", u"manual.md"},
    {LogisticParenthesis, u"logistic-parenthesis", sas, none, uncounted,
     u"The logistic form lacks a closing parenthesis, so the script does not run.",
     u"Repair the code with python3 -m scorewright.repair.", u"sas.md"},
    {LogisticOverflow, u"logistic-overflow", sas | python, sas, required,
     u"For scores below -709, exp(-score) overflows. In SAS the probability is missing; the Python class stops with an error.",
     u"In SAS, set a missing probability to 0 if the score is present; in Python, remove such rows before scoring.", u"manual.md"},
    {NoTerms, u"no-terms", sas, none, uncounted,
     u"A model without regression terms lacks the semicolon after its constant, so the script does not run.",
     u"Repair the code with python3 -m scorewright.repair.", u"sas.md"},
    {LabelEndsComment, u"label-ends-comment", sas, none, uncounted,
     u"The display name contains */, which ends the comment that quotes it.",
     u"Change the display name in the document.", u"sas.md"},
    {UnsupportedType, u"unsupported-type", sas, none, uncounted,
     u"SAS rejects a recoding of this type; the other targets read its column as numeric.",
     u"Use MapValues, NormContinuous or Discretize.", u"sas.md"},
    {NameCharacters, u"name-characters", sas | vba | python, none, uncounted,
     u"The name contains characters that the target does not allow, begins with a digit or, in SAS, gives a name of more than 32 characters: the code does not run.",
     u"Rename the column or the target column.", u"manual.md"},
    {NamesAlike, u"names-alike", sas | python, sas | python, counted,
     u"Several columns get the same name in the code, in SAS also if only case differs. All their recodings read the last of them.",
     u"Rename the columns.", u"manual.md"},
    // --- SQL
    {NoProbability, u"no-probability", sql, sql, uncounted,
     u"The dialect default stores the score as the prediction, whatever the column is called.",
     u"Name a dialect.", u"sql.md"},
    {SqlName, u"sql-name", sql, none, uncounted,
     u"The name is a word of SQL, begins with a digit or holds a character that only quoted names have, and stands without quotes.",
     u"Name it otherwise, a column in a view.", u"sql.md"},
    {QuotedName, u"quoted-name", sql, none, uncounted,
     u"The name is quoted: MySQL and MariaDB want sql_mode ANSI_QUOTES; a quotation mark in it is written \\\".",
     u"Set that mode, or name the column otherwise in a view.", u"sql.md"},
    {ApostropheInValue, u"apostrophe-in-value", sql, none, uncounted,
     u"An apostrophe in a value is written \\', which MySQL and MariaDB read, while others want ''.",
     u"Repair the script for other databases with python3 -m scorewright.repair.", u"sql.md"},
    {BackslashEscape, u"backslash-escape", sql, sql, counted,
     u"A backslash in a value is not doubled: MySQL and MariaDB read it and the next character as one, and look for another text. At the end of a value it keeps the script from running there.",
     u"Repair the script with python3 -m scorewright.repair --backslash-escapes.", u"sql.md"},
    {BooleanNumbers, u"boolean-numbers", sql, sql, counted,
     u"The boolean column is compared with the numbers 0 and 1: texts are all false in MySQL and MariaDB, unknown or refused elsewhere.",
     u"Set boolsAreNumbers to 0 where it holds the texts of the document.", u"sql.md"},
    {BooleanBlanks, u"boolean-blanks", sql, sql, counted,
     u"Texts of the boolean column are compared with the blanks around them.",
     u"Remove the blanks in a view.", u"sql.md"},
    {TextBlanks, u"text-blanks", sql, sql, counted,
     u"This dialect compares texts with the blanks around them.", u"Remove the blanks in a view.", u"sql.md"},
    {Capitals, u"capitals", sql, sql, required,
     u"A text differs from a listed value in capitals only: whether it counts is up to the collation.",
     u"Choose a collation that tells capitals apart, or make the data uniform.", u"sql.md"},
    {Accents, u"accents", sql, sql, required,
     u"A text differs from a listed value in accents: the default collations of MySQL and MariaDB, and those of SQL Server without accents, take the two for equal.",
     u"Choose a collation that tells accents apart, or make the data uniform.", u"sql.md"},
    {SinglePrecision, u"single-precision", sql, sql, uncounted,
     u"Columns and contributions are cast to FLOAT. It has 32 bits in MySQL, MariaDB and DuckDB: there, scores differ in the seventh digit, and a cell beside a bound may fall on its other side.",
     u"Use the dialect mysql there, which casts nothing.", u"sql.md"},
    {RowsAdded, u"rows-added", sql, none, uncounted,
     u"The rows of the prediction table stay, and a second run adds its own to them.",
     u"Delete them in the same transaction before.", u"sql.md"},
    {SecondRun, u"second-run", sql, none, uncounted,
     u"A second run fails: the line that would drop the table is a comment.",
     u"Drop the table by hand before.", u"sql.md"},
    {KeyLength, u"key-length", sql, none, required,
     u"Tables that the script creates have a key of VARCHAR(20); a longer one fails or is cut.",
     u"Create the tables by hand, and set createPredictionTable and createTmpTable to 0.", u"sql.md"},
    {TableNameQuoted, u"table-name-quoted", sql, none, uncounted,
     u"The name of the prediction table needs quotes, with which the statement that makes its index does not run.",
     u"Choose a name without blanks, hyphens and quotation marks.", u"sql.md"},
    {DistributeId, u"distribute-id", sql, none, uncounted,
     u"distribute by hash(id) says id, while the key is called otherwise.", u"Write the key by hand.", u"sql.md"},
    {CommentDashes, u"comment-dashes", sql, none, uncounted,
     u"The line --drop table has no blank after its dashes: the server itself refuses it.",
     u"Send the script through the client, which drops such lines.", u"sql.md"},
    {DebugRecoding, u"debug-recoding", sql, sql, uncounted,
     u"Predictions are made of a score of 0; contributions are columns of the temporary table. A script without probability does not run.",
     u"Leave debugRecoding out in production.", u"sql.md"},
    {DebugColumnsAlike, u"debug-columns-alike", sql, none, uncounted,
     u"Two recodings of one column make two debug columns of one name, which no database takes.",
     u"Leave debugRecoding out.", u"sql.md"},
    {SmallNumber, u"small-number", sql, none, uncounted,
     u"A number that is nearer to 0 than 1e-12 is written as 0.", u"Scale the column or the score.", u"sql.md"},
    // --- Excel VBA
    {LogisticAbsent, u"logistic-absent", sql | vba | html, sql | vba | html, uncounted,
     u"The code omits the logistic form: the result is the score.",
     u"Compute the probability as 1/(1+exp(-score)).", u"manual.md"},
    {QuoteInTitle, u"quote-in-title", vba, none, uncounted,
     u"A quotation mark in a title keeps the module from compiling.",
     u"Rename the column.", u"vba.md"},
    {CodePage, u"code-page", vba, none, uncounted,
     u"A title or value contains a character outside Windows-1252. The VBA editor pastes ? for what its code page lacks: the title is not found, or the value scores as unlisted.",
     u"Spell the module in ASCII before you paste it.", u"vba.md"},
    {TrueFalse, u"true-false", vba, vba, counted,
     u"VBA reads truth values of cells as True and False. The module compares TRUE and FALSE of a list in this spelling, but not those of a boolean column.",
     u"Enter truth values in a list's column, and texts in a boolean column.", u"vba.md"},
    // --- Python
    {MissingCodesParenthesis, u"missing-codes-parenthesis", python, none, uncounted,
     u"The line of missing codes lacks a closing parenthesis: the module does not compile.",
     u"Repair the code with python3 -m scorewright.repair.", u"python.md"},
    {NoCategories, u"no-categories", python, none, uncounted,
     u"A model without categorical columns does not compile: its __init__ is empty.", u"Repair the code with python3 -m scorewright.repair.", u"python.md"},
    {LogisticLastRow, u"logistic-last-row", python, python, uncounted,
     u"The logistic form fills the probability of the last row only.",
     u"Repair the code with python3 -m scorewright.repair.", u"python.md"},
    {Backslash, u"backslash-in-value", python, python, counted,
     u"A backslash in a value is not doubled, so that another text is looked for.", u"Repair the code with python3 -m scorewright.repair.", u"python.md"},
    // --- HTML
    {FiveCategories, u"five-categories", html, html, counted,
     u"Every answer to a list of exactly five categories scores as unknown.",
     u"Add a category to the document that never occurs.", u"html.md"},
    {LowestNan, u"lowest-nan", html, html, counted,
     u"A score at or below the lowest table point shows NaN.",
     u"Add two points to the table, below all possible scores and with the probability of its lowest point.", u"html.md"},
    {TableUnread, u"table-unread", html, html, uncounted,
     u"A model of kind C shows its score; the page ignores the table.",
     u"Set tkind to T if the result is a probability.", u"html.md"},
    {MissingCodesUnread, u"missing-codes-unread", html, html, counted,
     u"The page ignores missing codes: a code scores as a number.",
     u"Ask visitors to tick the box for unknown.", u"html.md"},
    {EmptyField, u"empty-field", html, html, required,
     u"The cell is missing. The page reads an empty field as 0.",
     u"Ask visitors to tick the box for unknown.", u"html.md"},
    {NotANumber, u"not-a-number", all, vba | html, required,
     u"A numeric cell is not a number and scores as missing. Python stops at it. HTML reads 0x10 as 16, and other texts as above the last bound; Excel VBA reads texts such as 1,5, 5% and &H10 as numbers.",
     u"Correct the data, or name the text with --missing.", u"manual.md"},
    {PageError, u"page-error", html, none, uncounted,
     u"The page shows only an error: a result requires a model of kind C, or one of kind T with a table.",
     u"Set tkind to C, or add the table.", u"html.md"},
    {CanvasScale, u"canvas-scale", html, none, uncounted,
     u"The canvas lacks a tag that the script requires: the page shows only an error.",
     u"Place the tag.", u"canvas.md"},
    {BarScale, u"bar-scale", html, none, uncounted,
     u"The bars are drawn on the scale of the third table point, which is absent.",
     u"Tick the box for the dynamic scale, or add a third table point.", u"html.md"},
    {ConstantMisplaced, u"constant-misplaced", html, html, uncounted,
     u"The page expects the constant after as many coefficients as there are recodings, and reads another number.",
     u"Give each recoding exactly one coefficient, and delete all others.", u"html.md"},
    {PercentSign, u"percent-sign", html, none, uncounted,
     u"The built-in layout shows % after a result that is not a probability.",
     u"Use a canvas.", u"html.md"},
    {SharedValues, u"shared-values", html, html, counted,
     u"The page asks once for a column of several recodings. Their values differ, so all but the last may score another value.",
     u"Give these recodings the same values in the same order.", u"html.md"},
    {ArrayTooLong, u"array-too-long", html, html, counted,
     u"The array is longer than needed. It is written in full, and its last number is taken for the one above all bounds.",
     u"Cut the array.", u"model-document.md"},
    // --- The SQL configuration file
    {UnknownSetting, u"unknown-setting", sql, none, uncounted,
     u"There is no setting of that name; it is ignored.", u"Correct the name.", u"sql-configuration.md"},
    {UnknownDialect, u"unknown-dialect", sql, none, uncounted,
     u"There is no dialect of that name; the script is general SQL.",
     u"Correct the name, if one of the dialects was meant.", u"sql-configuration.md"},
    {FlagText, u"flag-text", sql, none, uncounted,
     u"The flag is neither 0 nor 1. What does not begin with a number is false, and of a number the low 8 bits count.",
     u"Write 0 or 1.", u"sql-configuration.md"},
    {TableNameCut, u"table-name-cut", sql, none, uncounted,
     u"The name of the table, or that of the temporary one, is longer than the dialect allows, and is cut.",
     u"Choose a shorter name.", u"sql-configuration.md"},
    {EmptyName, u"empty-name", sql, none, uncounted,
     u"The setting is empty, which is not the same as left out.", u"Leave it out, or fill it in.", u"sql-configuration.md"},
    {PasswordInClear, u"password-in-clear", sql, none, uncounted,
     u"The password stands in the ETL document in clear.", u"Keep both files from other eyes.", u"sql-configuration.md"},
    // --- The HTML canvas
    {CanvasNotRead, u"canvas-not-read", html, none, uncounted,
     u"The canvas does not exist or has fewer than 10 characters. The program silently uses the built-in layout.",
     u"Correct the path.", u"canvas.md"},
    {CanvasTagMissing, u"canvas-tag-missing", html, none, uncounted,
     u"The canvas lacks a required tag, so no page is written.",
     u"Place the tag.", u"canvas.md"},
    {CanvasNumber, u"canvas-number", html, none, uncounted,
     u"The number of the tag is absent or invalid and counts as 0.",
     u"Write the number.", u"canvas.md"},
    {CanvasQuestion, u"canvas-question", html, none, uncounted,
     u"The canvas places questions one by one, but not each of them exactly once. If one is absent, no page is written.",
     u"Place each question once, or use [QRV_ALL_QUESTIONS/] if recodings share a column.", u"canvas.md"},
    {CanvasAnswer, u"canvas-answer", html, none, uncounted,
     u"The model of the answer does not exist or has another answer. Only the first answer of a model is filled in.",
     u"Place one answer for each model.", u"canvas.md"},
    {CanvasForm, u"canvas-form", html, none, uncounted,
     u"The canvas has no form named QRVform, where the script looks for the answers.",
     u"Name the form QRVform.", u"canvas.md"},
    {CanvasColours, u"canvas-colours", html, none, uncounted,
     u"In a page with a doctype, the bars are invisible in their default colours.",
     u"Set QRVSpecifiedHistogramColor before the script.", u"canvas.md"},
    // --- The model document
    {DocumentCut, u"document-cut", all, none, uncounted,
     u"The document is cut off or lacks end tags, and is read as far as it goes.",
     u"Take the whole document.", u"model-document.md"},
    {BoundsNotRising, u"bounds-not-rising", all, none, uncounted,
     u"The bounds do not rise: targets put values into different intervals.",
     u"Sort bounds and scores.", u"model-document.md"},
    {TableNotFalling, u"table-not-falling", all, none, uncounted,
     u"The scores of the table do not fall: targets find different probabilities.",
     u"Sort the table.", u"model-document.md"},
    {ProbabilityRange, u"probability-range", all, none, uncounted,
     u"A probability is not within 0 and 1.", u"Correct the table.", u"model-document.md"},
    {ProbabilityOrder, u"probability-order", all, none, uncounted,
     u"Probabilities neither rise throughout nor fall.", u"Correct the table.", u"model-document.md"},
    {TableAbsent, u"table-absent", all, none, uncounted,
     u"The model is one of a probability, but has neither a table nor the logistic form.",
     u"Add the table, or set tkind to C.", u"model-document.md"},
    {NotFinite, u"not-finite", all, none, uncounted,
     u"A number is none, or infinite: the generated code does not run, or scores nothing.",
     u"Correct the number.", u"model-document.md"},
    {ValueTwice, u"value-twice", sas | sql | vba, sas | sql | vba, counted,
     u"A value is listed twice. Its last score counts; SAS, SQL and Excel VBA take the first.",
     u"Leave one of them out.", u"model-document.md"},
    {EmptyValue, u"empty-value", vba | python, vba | python, counted,
     u"An empty value is listed: an empty cell takes its score, and not that of missing values.",
     u"Leave the empty value out.", u"model-document.md"},
    {ValueBlanks, u"value-blanks", all, sas | sql, counted,
     u"A listed value has blanks around it. Cells lose theirs, so that it never occurs; but SAS and MariaDB ignore blanks at its end.",
     u"Take the blanks out of the document.", u"model-document.md"},
};
// clang-format on

constexpr bool isInOrder() {
    for (std::size_t i = 0; i < std::size(kinds); ++i) {
        if (kinds[i].id != static_cast<FindingId>(i)) return false;
    }
    return std::size(kinds) == findingCount;
}
static_assert(isInOrder());

constexpr QStringView names[targetCount] = {u"sas", u"sql", u"vba", u"python", u"html"};

} // namespace

std::vector<Target> listTargets(Targets targets) {
    std::vector<Target> list;
    for (std::size_t t = 0; t < targetCount; ++t) {
        const auto target = static_cast<Target>(t);
        if ((targets & only(target)) != 0) list.push_back(target);
    }
    return list;
}

QStringList targetNames(Targets targets) {
    QStringList list;
    for (const Target target : listTargets(targets)) {
        list.append(names[static_cast<std::size_t>(target)].toString());
    }
    return list;
}

const FindingKind &kindOf(FindingId id) {
    return kinds[static_cast<std::size_t>(id)];
}

std::span<const FindingKind> findingKinds() {
    return kinds;
}

QStringList namesOf(const FindingSet &findings) {
    QStringList list;
    for (const FindingKind &kind : kinds) {
        if (findings.has(kind.id)) list.append(kind.name.toString());
    }
    return list;
}

QString grouped(std::int64_t number) {
    return QLocale(QLocale::English).toString(static_cast<qlonglong>(number));
}

QString rowsText(std::int64_t rows) {
    return rows == 1 ? QStringLiteral("1 row") : grouped(rows) + QStringLiteral(" rows");
}

void Notes::add(const FindingPlace &place, FindingId id, bool isFound, Targets limit) {
    const Targets concerned = kindOf(id).targets & asked & limit;
    if (!isFound || concerned == 0) return;
    findings.push_back({id, concerned, place.text, place.recoding});
}
