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
     u"The code for SAS, Excel VBA and Python does not score the recoding; for SQL and HTML, scorewright rejects the document.",
     u"Give the recoding the coefficient 0, or delete it.", u"manual.md"},
    {CoefficientWithoutRecoding, u"coefficient-without-recoding", all, vba | python, uncounted,
     u"For SAS, scorewright rejects the document. SQL ignores the coefficient; HTML reads a wrong constant. In Excel VBA and Python the coefficient multiplies the next term; as the last term it is a syntax error.",
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
     u"Bounds, table points and, in SQL, missing codes are written with 16 digits, in teradata with 15. A value between the written number and the exact one falls on the other side.",
     u"Round these numbers in the document to 15 digits.", u"manual.md"},
    {OtherBlanks, u"other-blanks", sas | sql | vba | python, sas | sql | vba | python, required,
     u"A text has tabs or no-break spaces around it. The model removes tabs, Python removes both; SAS, SQL and Excel VBA remove neither, so the text scores as unlisted.",
     u"Remove them from the data.", u"manual.md"},
    {NanCell, u"nan-cell", sql | vba | html, sql | vba | html, required,
     u"A numeric cell holds NaN or an infinity. For the model, only NaN is missing. PostgreSQL and DuckDB put NaN above the last bound; HTML puts both there, and Excel VBA reads both as missing.",
     u"Turn such cells into missing values before scoring, in PostgreSQL with nullif(income, 'NaN').", u"manual.md"},
    {NotListed, u"not-listed", all, none, required,
     u"A text is not in the list of its column. It scores as missing, without a warning.",
     u"Check whether the value is new or has another name in the data.", u"manual.md"},
    // --- SAS
    {MissingCodesLine, u"missing-codes-line", sas, none, uncounted,
     u"The missing-value test is incomplete: its opening is absent and it omits the last code. The script does not run.",
     u"Repair the code with python3 -m scorewright.repair.", u"sas.md"},
    {MissingCodesDigits, u"missing-codes-digits", sas | vba | python, sas | vba | python, counted,
     u"Missing codes are written with 6 significant digits. A longer code does not match and scores as a number.",
     u"Repair SAS and Python code with python3 -m scorewright.repair; in Excel VBA, write the code in full by hand.", u"manual.md"},
    {MissingCodesName, u"missing-codes-name", sql | vba | python, sql | vba | python, counted,
     u"The document lists missing codes under another spelling of the column's name, so the code ignores them or uses those of another column.",
     u"Turn the codes into missing values before scoring, or use only letters, digits and _ in the column's name.", u"manual.md"},
    {BooleanDigits, u"boolean-digits", sas, sas, counted,
     u"The scores of the boolean column are written with 6 significant digits.",
     u"If results must agree in more digits, write the scores of scorewright-check --show into the code.", u"sas.md"},
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
     u"For scores below -709.78, exp(-score) overflows. In SAS the probability is missing; the Python class stops with an error.",
     u"In SAS, set a missing probability to 0 if the score is present; in Python, remove such rows before scoring.", u"manual.md"},
    {NoTerms, u"no-terms", sas, none, uncounted,
     u"A model without regression terms lacks the semicolon after its constant, so the script does not run.",
     u"Repair the code with python3 -m scorewright.repair.", u"sas.md"},
    {LabelEndsComment, u"label-ends-comment", sas, none, uncounted,
     u"The display name contains */, which ends the comment that quotes it.",
     u"Change the display name in the document.", u"sas.md"},
    {UnsupportedType, u"unsupported-type", sas, none, uncounted,
     u"For SAS, scorewright rejects a recoding of this type; the other targets read its column as numeric.",
     u"Use MapValues, NormContinuous or Discretize.", u"sas.md"},
    {NameCharacters, u"name-characters", sas | vba | python, none, uncounted,
     u"The name contains characters that the target does not allow, begins with a digit or, in SAS, gives a name of more than 32 characters: the code does not run.",
     u"Rename the column or the target column.", u"manual.md"},
    {NamesAlike, u"names-alike", sas | python, sas | python, counted,
     u"Several columns get the same name in the code, in SAS also if only case differs. All their recodings read the last of them.",
     u"Rename the columns.", u"manual.md"},
    // --- SQL
    {NoProbability, u"no-probability", sql, sql, uncounted,
     u"The dialect default computes no probability: it stores the score as the prediction, whatever the column is called.",
     u"Set dbType to another dialect.", u"sql.md"},
    {SqlName, u"sql-name", sql, none, uncounted,
     u"The script writes the name without quotes, although it is a word of SQL, begins with a digit or contains a special character. Most databases reject it.",
     u"Rename the table. Rename a column in the document, and in a view of the table.", u"sql.md"},
    {QuotedName, u"quoted-name", sql, none, uncounted,
     u"Without sql_mode ANSI_QUOTES, MySQL and MariaDB read the quoted name as a text. A quotation mark within the name is written \\\", which most databases reject.",
     u"Set that mode, or rename the column in the document and in a view of the table.", u"sql.md"},
    {ApostropheInValue, u"apostrophe-in-value", sql, none, uncounted,
     u"The script writes an apostrophe in a value as \\', which MySQL and MariaDB read and most other databases reject.",
     u"For other databases, repair the script with python3 -m scorewright.repair.", u"sql.md"},
    {BackslashEscape, u"backslash-escape", sql, sql, counted,
     u"A backslash in a value is not doubled. MySQL and MariaDB read it and the next character as one, so the value scores as unlisted; if it ends the value, they reject the script.",
     u"For these databases, repair the script with python3 -m scorewright.repair --backslash-escapes.", u"sql.md"},
    {BooleanNumbers, u"boolean-numbers", sql, sql, counted,
     u"The script compares the boolean column with the numbers 0 and 1. Depending on the database, texts count as false or unknown, or are rejected.",
     u"If the column holds the texts of the document, set boolsAreNumbers to 0.", u"sql.md"},
    {BooleanBlanks, u"boolean-blanks", sql, sql, counted,
     u"The script does not remove the blanks around texts of the boolean column, so a text with blanks scores as unlisted.",
     u"Remove the blanks in a view.", u"sql.md"},
    {TextBlanks, u"text-blanks", sql, sql, counted,
     u"This dialect does not remove the blanks around texts, so a text with blanks scores as unlisted.",
     u"Remove the blanks in a view.", u"sql.md"},
    {Capitals, u"capitals", sql, sql, required,
     u"A text differs from a listed value only in capitals. The collation of the column decides whether they match.",
     u"Choose a case-sensitive collation, or correct the data.", u"sql.md"},
    {Accents, u"accents", sql, sql, required,
     u"A text differs from a listed value in accents. The default collations of MySQL and MariaDB, and accent-insensitive ones of SQL Server, treat the two as equal.",
     u"Choose an accent-sensitive collation, or correct the data.", u"sql.md"},
    {SinglePrecision, u"single-precision", sql, sql, uncounted,
     u"The script casts columns and points to FLOAT, which has 32 bits in MySQL, MariaDB and DuckDB. There, scores differ in the seventh digit, and a cell close to a bound may fall on its other side.",
     u"For these databases, set dbType to mysql, which casts nothing.", u"sql.md"},
    {RowsAdded, u"rows-added", sql, none, uncounted,
     u"The script keeps the rows of the prediction table, so a second run doubles them.",
     u"Delete the old rows first, in the same transaction.", u"sql.md"},
    {SecondRun, u"second-run", sql, none, uncounted,
     u"A second run fails because the prediction table exists: the line that would drop it is a comment.",
     u"Drop the table before each run, or create it once and set createPredictionTable to 0.", u"sql.md"},
    {KeyLength, u"key-length", sql, none, required,
     u"The tables that the script creates have a key of VARCHAR(20). A longer key is rejected or truncated.",
     u"Create the tables yourself, and set createPredictionTable and createTmpTable to 0.", u"sql.md"},
    {TableNameQuoted, u"table-name-quoted", sql, none, uncounted,
     u"The script quotes the name of the prediction table and then appends _index, so it cannot create the index.",
     u"Choose a name without blanks, hyphens and quotation marks.", u"sql.md"},
    {DistributeId, u"distribute-id", sql, none, uncounted,
     u"The script distributes the tables it creates by the column id, although the key has another name.",
     u"Write the name of the key into the script.", u"sql.md"},
    {CommentDashes, u"comment-dashes", sql, none, uncounted,
     u"The line --drop table has no blank after its dashes. The client of MySQL and MariaDB removes such lines; the server rejects them.",
     u"Run the script with that client.", u"sql.md"},
    {DebugRecoding, u"debug-recoding", sql, sql, uncounted,
     u"The script writes points to the temporary table and scores every row as 0. A script without probability fails.",
     u"Set debugRecoding to 0 in production.", u"sql.md"},
    {DebugColumnsAlike, u"debug-columns-alike", sql, none, uncounted,
     u"Two recodings of one column give two debug columns of the same name, which databases reject.",
     u"Set debugRecoding to 0.", u"sql.md"},
    {SmallNumber, u"small-number", sql, none, uncounted,
     u"A number closer to 0 than 1e-12 is written as 0.", u"Rescale the column or the score.", u"sql.md"},
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
     u"The listed values TRUE and FALSE match truth values in cells, not texts; those of a boolean column match texts, not truth values.",
     u"Enter truth values in a list's column, and texts in a boolean column.", u"vba.md"},
    // --- Python
    {MissingCodesParenthesis, u"missing-codes-parenthesis", python, none, uncounted,
     u"The missing-value test lacks a closing parenthesis, so the module does not compile.",
     u"Repair the module with python3 -m scorewright.repair.", u"python.md"},
    {NoCategories, u"no-categories", python, none, uncounted,
     u"A model without categorical columns has an empty __init__, so the module does not compile.",
     u"Repair the module with python3 -m scorewright.repair.", u"python.md"},
    {LogisticLastRow, u"logistic-last-row", python, python, uncounted,
     u"The logistic form computes the probability of the last row only; all other rows get 0.",
     u"Repair the module with python3 -m scorewright.repair.", u"python.md"},
    {Backslash, u"backslash-in-value", python, python, counted,
     u"A backslash in a value is not escaped. Where Python reads an escape, such as \\n, the value scores as unlisted.",
     u"Repair the module with python3 -m scorewright.repair.", u"python.md"},
    // --- HTML
    {FiveCategories, u"five-categories", html, html, counted,
     u"Every answer to a list of exactly five values scores as unknown.",
     u"Add to the list a value that never occurs.", u"html.md"},
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
     u"The cell is missing, but the page reads an empty field as 0.",
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
     u"The page expects the constant after one coefficient for each recoding, and so reads another number as the constant.",
     u"Give each recoding exactly one coefficient, and delete all others.", u"html.md"},
    {PercentSign, u"percent-sign", html, none, uncounted,
     u"The built-in layout shows % after a result that is not a probability.",
     u"Use a canvas.", u"html.md"},
    {SharedValues, u"shared-values", html, html, counted,
     u"The page asks once for a column of several recodings. Their values differ, so all but the last may score another value.",
     u"Give these recodings the same values in the same order.", u"html.md"},
    {ArrayTooLong, u"array-too-long", html, html, counted,
     u"The array of scores is longer than needed. The page uses its last score above all bounds.",
     u"Shorten the array.", u"model-document.md"},
    // --- The SQL configuration file
    {UnknownSetting, u"unknown-setting", sql, none, uncounted,
     u"No setting has this name. The program ignores it.", u"Correct the name.", u"sql-configuration.md"},
    {UnknownDialect, u"unknown-dialect", sql, none, uncounted,
     u"No dialect has this name. The script is general SQL.", u"Correct the name if you meant a dialect.", u"sql-configuration.md"},
    {FlagText, u"flag-text", sql, none, uncounted,
     u"The flag is neither 0 nor 1. A number is true if its low 8 bits are not 0; a text without a leading number is false.",
     u"Write 0 or 1.", u"sql-configuration.md"},
    {TableNameCut, u"table-name-cut", sql, none, uncounted,
     u"The name of the prediction table or of the temporary table exceeds the limit of the dialect, and is truncated.",
     u"Choose a shorter name.", u"sql-configuration.md"},
    {EmptyName, u"empty-name", sql, none, uncounted,
     u"The setting is empty, so its default does not apply.", u"Fill it in, or leave it out.", u"sql-configuration.md"},
    {PasswordInClear, u"password-in-clear", sql, none, uncounted,
     u"The ETL document contains the password in plain text.",
     u"Restrict access to it and to the configuration file.", u"sql-configuration.md"},
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
     u"The model of the answer does not exist or already has an answer. Only the first answer of a model is filled in.",
     u"Place one answer for each model.", u"canvas.md"},
    {CanvasForm, u"canvas-form", html, none, uncounted,
     u"The canvas has no form named QRVform, where the script looks for the answers.",
     u"Name the form QRVform.", u"canvas.md"},
    {CanvasColours, u"canvas-colours", html, none, uncounted,
     u"In a page with a doctype, the bars are invisible in their default colours.",
     u"Set QRVSpecifiedHistogramColor before the script.", u"canvas.md"},
    // --- The model document
    {DocumentCut, u"document-cut", all, none, uncounted,
     u"The document is truncated or lacks end tags. The program reads it up to its end.",
     u"Get the complete document.", u"model-document.md"},
    {BoundsNotRising, u"bounds-not-rising", all, none, uncounted,
     u"The bounds do not rise, so targets assign values to different bins.", u"Sort bounds and scores.", u"model-document.md"},
    {TableNotFalling, u"table-not-falling", all, none, uncounted,
     u"The scores of the probability table do not fall, so targets find different probabilities.",
     u"Sort the table by score, highest first.", u"model-document.md"},
    {ProbabilityRange, u"probability-range", all, none, uncounted,
     u"A probability is below 0 or above 1.", u"Correct the table.", u"model-document.md"},
    {ProbabilityOrder, u"probability-order", all, none, uncounted,
     u"The probabilities neither rise throughout nor fall throughout.", u"Correct the table.", u"model-document.md"},
    {TableAbsent, u"table-absent", all, none, uncounted,
     u"The model predicts a probability, but has neither a probability table nor the logistic form.",
     u"Add the table, or set tkind to C.", u"model-document.md"},
    {NotFinite, u"not-finite", all, none, uncounted,
     u"A number is NaN or infinite. The generated code does not run or returns no score.",
     u"Correct the number.", u"model-document.md"},
    {ValueTwice, u"value-twice", sas | sql | vba, sas | sql | vba, counted,
     u"A value is listed twice. In the model its last score counts; SAS, SQL and Excel VBA use the first.",
     u"Remove one of the two.", u"model-document.md"},
    {EmptyValue, u"empty-value", vba | python, vba | python, counted,
     u"An empty value is listed. An empty cell gets its score instead of that of missing values.",
     u"Remove the empty value.", u"model-document.md"},
    {ValueBlanks, u"value-blanks", all, sas | sql, counted,
     u"A listed value has blanks around it. It never matches, because cells are trimmed; but SAS and MariaDB ignore blanks at its end.",
     u"Remove the blanks in the document.", u"model-document.md"},
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
    const Targets concerned = kindOf(id).targets & requested & limit;
    if (!isFound || concerned == 0) return;
    findings.push_back({id, concerned, place.text, place.recoding});
}
