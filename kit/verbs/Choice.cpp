#include "verbs/Choice.h"

#include <algorithm>
#include <stdexcept>

namespace zelkit {

namespace {

/// Returns whether the name is that of the event, with or without modifiers such as ":u".
bool isMeant(const EventDescription& event, const std::string& name) {
  const std::string label = event.label();
  return label == name || (!event.isTracePoint() && label.substr(0, label.find(':')) == name);
}

std::string namesOf(const std::vector<EventDescription>& events) {
  std::string names;
  for (const EventDescription& event : events) names += (names.empty() ? "" : ", ") + event.label();
  return names;
}

std::size_t namedEvent(const Recording& recording, const std::string& name) {
  const std::vector<EventDescription>& events = recording.events();
  const auto found = std::find_if(events.begin(), events.end(),
                                  [&](const EventDescription& event) { return isMeant(event, name); });
  if (found == events.end())
    throw std::runtime_error(recording.name() + ": no event " + name + "; there are: " + namesOf(events));
  return static_cast<std::size_t>(found - events.begin());
}

/// Returns the index of the first event with samples that a timechart does not show, plain ones before
/// trace-points.
std::size_t defaultEvent(const Recording& recording, const Survey& survey, const OldPayloads& payloads) {
  const std::vector<EventDescription>& events = recording.events();
  for (const bool tracePoint : {false, true})
    for (std::size_t i = 0; i < events.size(); ++i)
      if (events[i].isTracePoint() == tracePoint && survey.samples[i] != 0 && !payloads.knows(i)) return i;
  return 0;
}

}  // namespace

Choice choose(const Recording& recording, const Survey& survey, const OldPayloads& payloads,
              const std::string& eventName) {
  const std::vector<EventDescription>& events = recording.events();
  Choice choice;
  choice.event =
      eventName.empty() ? defaultEvent(recording, survey, payloads) : namedEvent(recording, eventName);
  for (std::size_t i = 0; i < events.size(); ++i)
    if (payloads.knows(i)) choice.tracePoints += survey.samples[i];
  if (!eventName.empty() || !payloads.knows(choice.event)) choice.plainSamples = survey.samples[choice.event];
  const bool unknownTracePoint = events[choice.event].isTracePoint() && eventName.empty();
  if (choice.plainSamples != 0 && !(unknownTracePoint && choice.tracePoints != 0))
    choice.documents.push_back(Kind::profile);
  if (choice.tracePoints != 0) choice.documents.push_back(Kind::timechart);
  if (payloads.damaged()) choice.notes.emplace_back("the formats of its trace-points are damaged");
  for (std::size_t i = 0; i < events.size(); ++i)
    if (i != choice.event && !events[i].isTracePoint() && survey.samples[i] != 0)
      choice.notes.push_back("the profile shows " + events[choice.event].label() + "; for the " +
                             std::to_string(survey.samples[i]) + " samples of " + events[i].label() +
                             " say --event " + events[i].label());
  return choice;
}

}  // namespace zelkit
