#include "model/banner.h"

void putBanner(TextBuffer &out, const ModelDocument &document, std::span<const Variable> variables,
               const BannerText &banner) {
    fill(out, banner.head,
         {{u"version", modelVersion(document)},
          {u"file", document.fileName},
          {u"count", std::ssize(variables)}});
    for (const Variable &variable : variables) {
        put(out, banner.before, variable.cleanField, u"  <->  ", variable.recodingName,
            banner.after);
    }
    put(out, banner.end);
}
