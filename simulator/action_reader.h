// Reads what is done in answer to a command.
#pragma once

#include <functional>
#include <string>

#include "simulator/action.h"
#include "simulator/fields.h"
#include "simulator/place.h"

namespace kesp::simulator {

struct AnswerForm {
  std::string reply_terminator = "\r";
  Place place = Place::kOwnLine;
};

// One action, from an object.
Action ReadAction(const Entry& entry, const AnswerForm& form);

// A text, null, a list of actions, or {"cycle": [...]} of such answers.
Answer ReadAnswer(const Entry& entry, const AnswerForm& form);

// Hands on each answer of a cycle, or the only one.
void ReadTurns(const Entry& entry, const std::function<void(const Entry&)>& read_one);

}  // namespace kesp::simulator
