#include "platform/browsers/PagePrograms.h"

using namespace Qt::StringLiterals;

namespace browsers {
namespace {

// clang-format off
constexpr char16_t styles[] =
    u"function getCssRulesFromDocumentStyleSheets(media) { var resultCssRules = ''; for "
    u"(var i = 0; i < document.styleSheets.length; i++) { var styleSheet = "
    u"document.styleSheets[i]; if (isRuleFromMedia(styleSheet, media)) { try "
    u"{resultCssRules += ' ' + getCssRulesFromRuleList(styleSheet.cssRules, media);  } "
    u"catch(err) {} } } return resultCssRules; } function "
    u"getCssRulesFromRuleList(rules, media) { if(rules==null) { return ''; } var "
    u"resultCssRules = ''; for (var i = 0; i < rules.length; i++) { var rule = "
    u"rules[i]; if (rule.type == 1 && rule.cssText) { resultCssRules += rule.cssText + "
    u"' '; } else if (rule.type == 3) { if (isRuleFromMedia(rule, media)) "
    u"resultCssRules += getCssRulesFromRuleList(rule.styleSheet.cssRules || "
    u"rule.styleSheet.rules, media); } else if (rule.type == 4) { if "
    u"(isRuleFromMedia(rule, media)) resultCssRules += "
    u"getCssRulesFromRuleList(rule.cssRules || rule.rules, media); } } return "
    u"resultCssRules; } function isRuleFromMedia(ruleOrStyleSheet, media) { while "
    u"(ruleOrStyleSheet) { var mediaList = ruleOrStyleSheet.media; if (mediaList) { if "
    u"(!isMediaListContainsValue(mediaList, media) && "
    u"!isMediaListContainsValue(mediaList, 'all') && mediaList.length > 0) return "
    u"false; } ruleOrStyleSheet = ruleOrStyleSheet.ownerRule || "
    u"ruleOrStyleSheet.parentRule || ruleOrStyleSheet.parentStyleSheet; } return true; "
    u"} function isMediaListContainsValue(mediaList, media) { media = "
    u"String(media).toLowerCase(); for (var i = 0; i < mediaList.length; i++) { if "
    u"(String(mediaList.item(i)).toLowerCase() == media) return true; } return false; } "
    u"getCssRulesFromDocumentStyleSheets('all')+getCssRulesFromDocumentStyleSheets('scre"
    u"en');";

constexpr char16_t frames[] =
    u"var iframes1=window.frames; var iframes2=document.getElementsByTagName('iframe'); "
    u"var iframeText=''; for(var i=0;i<iframes2.length;i++) { iframeText+='iframe::'; "
    u"try { "
    u"iframeText+=window.btoa(encodeURI(iframes1[iframes2[i].id].document.documentElemen"
    u"t.outerHTML)); } catch(err) {} } iframeText;";
// clang-format on

}  // namespace

QString documentProgram() {
  return u"document.documentElement.outerHTML"_s;
}

QString stylesProgram() {
  return QString::fromUtf16(styles);
}

QString framesProgram() {
  return QString::fromUtf16(frames);
}

}  // namespace browsers
