#!/usr/bin/env python3
"""The translator of the comparison of values."""
import unittest

from calc_text import Home, Unknown, scope_at, translated

HOME = Home("My Sheet", names={"this.year"}, table="Sales", tables={"sales"},
            functions={"CEILING": "CEILING.XCL", "SKEW.P": "SKEWP"})


class CalcText(unittest.TestCase):
    def test_gives_references_their_sheet(self):
        for excel, calc in (
                ("SUM(A1,$B$2:C3)", "SUM($'My Sheet'.A1;$'My Sheet'.$B$2:C3)"),
                ("'It''s'!A1+Data!B:B", "$'It''s'.A1+$'Data'.B:B"),
                ("{1,2;3,\"a,b;c\"}", "{1;2|3;\"a,b;c\"}"),
                ("IF(TRUE,\"A1,B2\",#N/A)", "IF(TRUE;\"A1,B2\";#N/A)"),
                ("Data!#REF!*this.Year", "#REF!*$'My Sheet'.this.Year"),
                ("_xlfn.SKEW.P(ceiling(2,1),floor(2,1))", "SKEWP(CEILING.XCL(2;1);floor(2;1))"),
                ("_xlfn.IFNA(_xlfn._xlws.SORT(A1),rate)", "IFNA(SORT($'My Sheet'.A1);rate)")):
            with self.subTest(excel):
                self.assertEqual(translated(excel, HOME), calc)

    def test_writes_tables_in_full(self):
        for excel, calc in (
                ("Sales[@Net]", "Sales[[#This Row];[Net]]"),
                ("[@[Net, sum]]", "Sales[[#This Row];[Net, sum]]"),
                ("SUM(Sales)", "SUM(Sales[])"),
                ("Sales[#All]", "Sales[[#All]]"),
                ("Sales[[#Headers],[Net]:[Tax]]", "Sales[[#Headers];[Net]:[Tax]]")):
            with self.subTest(excel):
                self.assertEqual(translated(excel, HOME), calc)

    def test_puts_in_what_the_names_of_let_stand_for(self):
        formula = "LET(a,A1,b,LET(a,a+1,a*2),SUM(a,b))"
        for part, calc in (("SUM(a,b)", "SUM((A1);((((A1)+1)*2)))"),
                           ("a*2", "((A1)+1)*2"),
                           ("a+1", "(A1)+1"),
                           (formula, "(SUM((A1);((((A1)+1)*2))))")):
            with self.subTest(part):
                scope = scope_at(formula, formula.index(part))
                text = translated(part, HOME, scope).replace("$'My Sheet'.", "")
                self.assertEqual(text, calc)

    def test_leaves_alone_what_it_does_not_know(self):
        for excel in ("A1 B1", "A1#", "@A1:A3", "[1]Data!A1", "'[Book.xlsx]S'!A1", "Jan:Mar!A1",
                      "MAP(A1:A3,LAMBDA(x,x+1))"):
            with self.subTest(excel), self.assertRaises(Unknown):
                translated(excel, HOME, scope_at(excel, 0))


if __name__ == "__main__":
    unittest.main()
