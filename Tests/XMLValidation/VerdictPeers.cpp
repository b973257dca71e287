#include "VerdictPeers.h"

#include <expat.h>
#include <libxml/parser.h>

#include <memory>

Verdict VerdictPeers::expat(std::string_view utf8) {
    const std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)> parser(
        XML_ParserCreateNS("UTF-8", '\n'), XML_ParserFree);
    // Entities are read only where something wants to know what they hold.
    XML_SetCharacterDataHandler(parser.get(), [](void*, const XML_Char*, int) {});
    const auto status = XML_Parse(parser.get(), utf8.data(), static_cast<int>(utf8.size()), XML_TRUE);
    const XML_Error error = XML_GetErrorCode(parser.get());
    return {.isAccepted = status == XML_STATUS_OK,
            .code = error,
            .line = static_cast<long>(XML_GetErrorLineNumber(parser.get())),
            .text = error == XML_ERROR_NONE ? "" : XML_ErrorString(error)};
}

Verdict VerdictPeers::libxml2(std::string_view utf8) {
    const std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)> context(xmlNewParserCtxt(),
                                                                               xmlFreeParserCtxt);
    Verdict verdict;
    const auto onError = [](void* user, xmlErrorPtr error) {
        auto& found = *static_cast<Verdict*>(user);
        if (found.code == 0 && error->level >= XML_ERR_ERROR) {
            found.code = error->code;
            found.line = error->line;
            found.text = error->message == nullptr ? "" : error->message;
        }
    };
    xmlSetStructuredErrorFunc(&verdict, onError);
    constexpr int options = XML_PARSE_NONET | XML_PARSE_HUGE;
    const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
        xmlCtxtReadMemory(context.get(), utf8.data(), static_cast<int>(utf8.size()), nullptr, "UTF-8",
                          options),
        xmlFreeDoc);
    xmlSetStructuredErrorFunc(nullptr, nullptr);
    verdict.isAccepted = context->wellFormed != 0 && context->nsWellFormed != 0;
    return verdict;
}
