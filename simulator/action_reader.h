// Reads what is done in answer to a command.
#pragma once

#include <functional>
#include <string>

#include "simulator/action.h"
#include "simulator/fields.h"

namespace kesp::simulator {

// Whose line the answers go out on: a device behind another one, or on a bus, cannot close, reset or flood
// it, nor hold replies back.
enum class LineOwner { kDevice, kOther };

struct AnswerForm {
  std::string reply_terminator = "\r";
  LineOwner line = LineOwner::kDevice;
};

// One action, from an object.
Action ReadAction(const Entry& entry, const AnswerForm& form);

// A text, null, a list of actions, or {"cycle": [...]} of such answers.
Answer ReadAnswer(const Entry& entry, const AnswerForm& form);

// Hands on each answer of a cycle, or the only one.
void ReadTurns(const Entry& entry, const std::function<void(const Entry&)>& read_one);

}  // namespace kesp::simulator
