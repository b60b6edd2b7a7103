#pragma once

#include <QString>
#include <memory>
#include <qpdf/QPDF.hh>
#include <string>
#include <vector>

namespace inspect {

/// A written file, opened by qpdf itself.
std::unique_ptr<QPDF> open(const QString& path);

/// Page numbers, from 1, to which the links of each page lead; 0 for a link that leads nowhere.
/// Follows /Dest and GoTo actions, arrays and names of both styles.
std::vector<std::vector<int>> linkTargets(QPDF& document);

struct OutlineItem {
  std::string title;
  int depth = 0;
  int page = 0;
};

std::vector<OutlineItem> outline(QPDF& document);

/// Says what is wrong between marked content, parent tree and structure elements; empty when each
/// numbered page and annotation has its elements and every element's way up ends at the root.
std::string tagComplaints(QPDF& document);

}  // namespace inspect
