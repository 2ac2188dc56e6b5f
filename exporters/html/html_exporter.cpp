// A page is its canvas with each tag replaced. The replacements, and the functions that write them:
//
// [QRV_SCRIPT/]           <script type="text/javascript">            writeHtmlScript
// [QRV_ALL_QUESTIONS/]    Question 1) Age                            putAllQuestions
// [QRV_QUESTION 1]        Age <div style="position:relative; …       putQuestion
// [QRV_ANSWER 0 /]        <div id="m0_total_proba" …                 putAnswer
// [QRV_DYN_SCALE/], [QRV_GRAPHICS/], [QRV_SUBMIT/]                   putReplacement
// after the last tag      computeIsReady=true;                       putPage
#include "exporters/html/html_exporter.h"

#include "exporters/html/default_canvas_text.h"
#include "exporters/html/form_controls.h"
#include "exporters/html/html_page.h"
#include "exporters/html/scoring_script.h"
#include "exporters/html/variable_list.h"
#include "model/write_output.h"
#include "platform/platform.h"

#include <algorithm>
#include <optional>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int exitNothingToAsk = 2;
constexpr int exitNotScorable = 3;

// The questions that a canvas places one by one. A round starts with the first of them and ends
// after as many questions as there are variables, so never if variables share a column. The next
// question starts another round.
struct QuestionRound {
    std::vector<bool> asked; // by question; as many as there are variables
    std::size_t count = 0;
};

// --- Input

QString canvasOf(const QString &canvasPath) {
    const QString canvas = readCanvas(canvasPath);
    return canvas.size() < shortestCanvas ? QStringView(defaultCanvas).toString() : canvas;
}

bool hasRequiredTags(const CanvasTags &tags) {
    const auto occurs = [&](TagKind kind) { return tags[kind].start >= 0; };
    for (const TagKind kind : {TagKind::Script, TagKind::Answer}) {
        if (occurs(kind)) continue;
        printText(u"Required tag %1] is missing!"_s.arg(tagOpening(kind)));
        return false;
    }
    if (occurs(TagKind::AllQuestions) || occurs(TagKind::Question)) return true;
    printText(u"One of these tags (%1],%2]) is missing!"_s.arg(tagOpening(TagKind::AllQuestions),
                                                               tagOpening(TagKind::Question)));
    return false;
}

// --- Output

void putAllQuestions(TextBuffer &out, HtmlPage &page) {
    for (std::size_t i = 0; i < page.questions.size(); ++i) {
        put(out, u"Question ", static_cast<qsizetype>(i + 1), u") ");
        writeQuestionControls(out, page, page.questions[i]);
    }
    writeListenerScript(out, page);
}

void putQuestion(TextBuffer &out, HtmlPage &page, std::optional<QuestionRound> &round) {
    const int number = page.tags.questionNumber;
    if (number > std::ssize(page.records)) {
        printText(u"Question %1 does not exist. Ignoring this call!"_s.arg(number));
        return;
    }
    if (!round) round = {std::vector<bool>(page.records.size())};
    if (number < 1 || number > std::ssize(page.questions)) return;
    const auto index = static_cast<std::size_t>(number - 1);
    if (round->asked[index]) {
        printText(u"Question %1 has been asked multiple times. Ignoring this call!"_s.arg(number));
        return;
    }
    round->asked[index] = true;
    writeQuestionControls(out, page, page.questions[index]);
    if (++round->count == page.records.size()) {
        writeListenerScript(out, page);
        round.reset();
    }
}

void putAnswer(TextBuffer &out, const HtmlPage &page) {
    const bool exists = page.tags.answerModel < std::ssize(page.models);
    put(out, u"<div id=\"m", exists ? page.tags.answerModel : 0,
        u"_total_proba\" style=\"display:inline;\">0</div>\n");
}

void putReplacement(TextBuffer &out, HtmlPage &page, TagKind kind,
                    std::optional<QuestionRound> &round) {
    switch (kind) {
    case TagKind::Script:
        writeHtmlScript(out, page);
        break;
    case TagKind::AllQuestions:
        putAllQuestions(out, page);
        break;
    case TagKind::Question:
        putQuestion(out, page, round);
        break;
    case TagKind::DynScale:
        put(out, u"<input id='scaleProba' type='checkbox' onclick='ComputeModel();' /> "
                 "dynamic scale\n");
        break;
    case TagKind::Graphics:
        put(out, u"<div id=\"myDrawingSpace\" class=\"histogram\"> </div>\n");
        break;
    case TagKind::Answer:
        putAnswer(out, page);
        break;
    case TagKind::Submit:
        put(out,
            u"<input type=\"button\" "
            "onClick=\"finished=true; QRVform.submit();finished=false;\" value=\"",
            page.tags.labels.submit, u"\"/>\n");
        break;
    case TagKind::UnknownLabel: // labels are replaced by nothing
    case TagKind::TrueLabel:
    case TagKind::FalseLabel:
    case TagKind::SubmitLabel:
    case TagKind::None:
        break;
    }
}

qsizetype expectedSize(const HtmlPage &page) {
    qsizetype size = page.tags.canvas.size();
    for (const HtmlModel &model : page.models) size += expectedOutput(model.document);
    return size;
}

// Returns the round that is still open at the end.
std::optional<QuestionRound> putPage(TextBuffer &out, HtmlPage &page) {
    const QStringView canvas = page.tags.canvas;
    std::optional<QuestionRound> round;
    qsizetype copied = 0;
    for (TagKind kind = nextTag(page.tags, TagKind::None); kind != TagKind::None;
         kind = nextTag(page.tags, kind)) {
        const Tag &tag = page.tags[kind];
        if (tag.start > copied) put(out, canvas.sliced(copied, tag.start - copied));
        putReplacement(out, page, kind, round);
        copied = tag.end;
    }
    put(out, u"<script type=\"text/javascript\" ><!--\n"
             "computeIsReady=true;\nComputeModel();\n--></script>");
    put(out, canvas.sliced(copied));
    return round;
}

void reportForgottenQuestions(const QuestionRound &round) {
    TextBuffer message;
    put(message, u"You have asked only ", static_cast<qsizetype>(round.count), u" out of ",
        std::ssize(round.asked), u" question!\nYou forgot questions: ");
    for (std::size_t i = 0; i < round.asked.size(); ++i) {
        if (!round.asked[i]) put(message, u" ", static_cast<qsizetype>(i + 1), u"\n");
    }
    put(message, u"\n");
    printText(message.text());
}

QString pagePath(const QString &modelPath, const QString &outputPath) {
    if (!outputPath.isEmpty()) return outputPath;
    return QString(modelPath).replace(u".ModelXML"_s, u".html"_s, Qt::CaseInsensitive);
}

} // namespace

int exportToHtml(const QString &modelPath, const QString &canvasPath, const QString &outputPath) {
    HtmlPage page;
    page.models = readModels(modelPath);
    if (page.models.empty()) return exitNothingToAsk;
    const QString canvas = canvasOf(canvasPath);
    page.tags = scanCanvas(canvas, printText);
    if (!hasRequiredTags(page.tags)) return exitNotScorable;
    if (!readRegressions(page.models)) return exitNotScorable;
    page.records = listRecords(page.models);
    page.questions = listQuestions(page.records);

    const QString problem = scoreLinesProblem(page.records);
    if (!problem.isEmpty()) return reportProblem(modelPath, problem);

    TextBuffer out(expectedSize(page));
    if (const std::optional<QuestionRound> openRound = putPage(out, page)) {
        reportForgottenQuestions(*openRound);
        return exitNothingToAsk;
    }
    const auto unusable = std::ranges::find_if(
        page.models, [](const HtmlModel &model) { return !model.document.problem.isEmpty(); });
    if (unusable != page.models.end()) return reportProblem(unusable->document);
    writePage(pagePath(modelPath, outputPath), out.text());
    return exitSuccess;
}
