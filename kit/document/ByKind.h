#pragma once

#include "document/DocumentVisitor.h"

namespace zelkit {

/// Hands the rows of a profile to one visitor, and those of a timechart to the other.
class ByKind : public DocumentVisitor {
 public:
  ByKind(DocumentVisitor& profile, DocumentVisitor& timechart) : _profile(profile), _timechart(timechart) {}

  void description(std::string_view name, std::string_view value) override {
    _profile.description(name, value);
  }
  void process(const ProcessRow& row) override { _profile.process(row); }
  void library(const LibraryRow& row) override { _profile.library(row); }
  void file(const FileRow& row) override { _profile.file(row); }
  void function(const FunctionRow& row) override { _profile.function(row); }
  void sample(const SampleRow& row) override { _profile.sample(row); }
  void seriesStart(const SeriesHead& head) override { _timechart.seriesStart(head); }
  void point(double time, double value) override { _timechart.point(time, value); }
  void event(const SeriesEvent& event) override { _timechart.event(event); }
  void seriesEnd() override { _timechart.seriesEnd(); }

 private:
  DocumentVisitor& _profile;
  DocumentVisitor& _timechart;
};

}  // namespace zelkit
