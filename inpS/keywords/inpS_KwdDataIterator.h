#pragma once

// Walks something of a keyword's data from the first to the last.
class inpS_KwdDataIterator {
public:
  virtual ~inpS_KwdDataIterator() = default;
  virtual void First() = 0;
  virtual void Next() = 0;
  virtual bool IsDone() const = 0;
};
