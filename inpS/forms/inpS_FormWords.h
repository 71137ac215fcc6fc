#pragma once

#include "database/schema/eds_Form.h"
#include "parser/inp_Keyword.h"

class inp_Visitor;
class utl_Stream;

// Data lines of words of a list, one after the other over as many lines as it takes.

// As the list spells them, separated by ", ". Empty when there is none, or one that is not of the
// list: that is told, and that the keyword is kept as text.
cow_String inpS_readWords(const inp_Keyword& keyword, const eds_FormItem& item,
                          inp_Visitor& messages);
cow_List<cow_String> inpS_splitWords(std::string_view words);
// Of a data line: what it lacks, by the item's name, or by its place where values have numbers
// alone.
cow_String inpS_textOfLack(const eds_FormItem& item, int col);
// Eight to a line.
void inpS_printWords(utl_Stream& out, std::string_view words);
