-- Questions about Excel that only Excel can answer. What is written is written into a scratch
-- workbook, by its name: the user may bring another one to the front at any moment.

on xx_version()
	tell application "Microsoft Excel"
		with timeout of 10 seconds
			return version
		end timeout
	end tell
end xx_version

on xx_bookcount()
	tell application "Microsoft Excel"
		with timeout of 10 seconds
			return count of workbooks
		end timeout
	end tell
end xx_bookcount

on xx_names()
	tell application "Microsoft Excel"
		with timeout of 10 seconds
			set found to {}
			repeat with i from 1 to count of workbooks
				set end of found to name of workbook i
			end repeat
			return found
		end timeout
	end tell
end xx_names

-- The one workbook that is open now and was not before, or an error.
on xx_found(namesBefore)
	set found to {}
	repeat with each1 in my xx_names()
		if namesBefore does not contain {contents of each1} then set end of found to contents of each1
	end repeat
	if (count of found) is not 1 then error "Excel made no workbook of its own" number -2700
	return item 1 of found
end xx_found

-- A new workbook with numbers, a text and formulas, and the names by which it is found.
on xx_open()
	tell application "Microsoft Excel"
		with timeout of 20 seconds
			set namesBefore to my xx_names()
			make new workbook
			set bookName to my xx_found(namesBefore)
			set sheetName to name of worksheet 1 of workbook bookName
			set sh to worksheet sheetName of workbook bookName
			set value of range "A1" of sh to 1
			set value of range "A2" of sh to 2.5
			set value of range "A3" of sh to "text"
			set formula of range "B1" of sh to "=A1+A2"
			set formula of range "B2" of sh to "=B1*2"
			return {bookName, sheetName}
		end timeout
	end tell
end xx_open

on xx_close(bookName)
	tell application "Microsoft Excel"
		with timeout of 20 seconds
			close workbook bookName saving no
		end timeout
	end tell
	return true
end xx_close

on xx_evaluate(expr)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			return (evaluate name expr)
		end timeout
	end tell
end xx_evaluate

on xx_condition_at_range(bookName, sheetName)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			set sh to worksheet sheetName of workbook bookName
			set rg to range "D1:D3" of sh
			make new format condition at rg with properties {format condition type:expression, formula1:"=\"QXZ\"=\"QXZ\""}
			return {count of format conditions of rg, formula1 of format condition 1 of rg}
		end timeout
	end tell
end xx_condition_at_range

on xx_condition_at_end(bookName, sheetName)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			set sh to worksheet sheetName of workbook bookName
			set rg to range "E1:E3" of sh
			tell rg
				make new format condition at end with properties {format condition type:expression, formula1:"=\"QXZ\"=\"QXZ\""}
			end tell
			return {count of format conditions of rg, formula1 of format condition 1 of rg}
		end timeout
	end tell
end xx_condition_at_end

-- Whether the specifier that "make" gives still means the same condition when another one comes
-- before it.
on xx_condition_specifier(bookName, sheetName)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			set sh to worksheet sheetName of workbook bookName
			set rg to range "G1:G3" of sh
			set made1 to make new format condition at rg with properties {format condition type:expression, formula1:"=1=1"}
			make new format condition at rg with properties {format condition type:expression, formula1:"=2=2"}
			set first priority (format condition 2 of rg)
			return {formula1 of made1, formula1 of format condition 1 of rg, formula1 of format condition 2 of rg}
		end timeout
	end tell
end xx_condition_specifier

-- In which language a condition's formula is taken, and given back.
on xx_condition_language(bookName, sheetName)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			set sh to worksheet sheetName of workbook bookName
			set rg to range "J1:J3" of sh
			make new format condition at rg with properties {format condition type:expression, formula1:"=SUM(1,2)>0"}
			return formula1 of format condition 1 of rg
		end timeout
	end tell
end xx_condition_language

on xx_move_condition(bookName, sheetName)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			set sh to worksheet sheetName of workbook bookName
			set source1 to range "D1:D3" of sh
			set target1 to range "F1:F3" of sh
			modify applies to range (format condition 1 of source1) range (target1)
			return {count of format conditions of source1, count of format conditions of target1}
		end timeout
	end tell
end xx_move_condition

on xx_no_dependents(bookName, sheetName)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			set sh to worksheet sheetName of workbook bookName
			set found to direct dependents of range "Z9" of sh
			return found
		end timeout
	end tell
end xx_no_dependents

on xx_no_visible(bookName, sheetName)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			set sh to worksheet sheetName of workbook bookName
			set hidden of range "20:21" of sh to true
			try
				set told to get address of (special cells (range "A20:B21" of sh) type cell type visible)
			on error msg number n
				set hidden of range "20:21" of sh to false
				error msg number n
			end try
			set hidden of range "20:21" of sh to false
			return told
		end timeout
	end tell
end xx_no_visible

on xx_range_in_variable()
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			set r to range "A1"
			set before1 to get address of r
			select range "B2"
			return {before1, get address of r}
		end timeout
	end tell
end xx_range_in_variable

-- Whether a variable set to the active workbook follows it.
on xx_active_in_variable()
	tell application "Microsoft Excel"
		with timeout of 20 seconds
			set namesBefore to my xx_names()
			set w to active workbook
			make new workbook
			set other to my xx_found(namesBefore)
			set seen to missing value
			try
				set seen to name of w
			end try
			close workbook other saving no
			return {other, seen}
		end timeout
	end tell
end xx_active_in_variable

on xx_shapes(bookName, sheetName)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			set sh to worksheet sheetName of workbook bookName
			set rg to range "A1:B2" of sh
			return {formula of rg, formula r1c1 of rg, string value of rg, value2 of rg}
		end timeout
	end tell
end xx_shapes

on xx_formula2(bookName, sheetName)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			return formula2 of range "A1:B2" of worksheet sheetName of workbook bookName
		end timeout
	end tell
end xx_formula2

-- Whose A1 an expression means: that of the worksheet it is sent to (77), or of the one in front.
on xx_evaluate_in_sheet(bookName, sheetName)
	tell application "Microsoft Excel"
		with timeout of 20 seconds
			make new worksheet at end of workbook bookName
			set otherName to name of worksheet (count of worksheets of workbook bookName) of workbook bookName
			set value of range "A1" of worksheet otherName of workbook bookName to 77
			activate object worksheet sheetName of workbook bookName
			tell worksheet otherName of workbook bookName
				set seen to evaluate name "A1+0"
			end tell
			return {seen, (evaluate name "A1+0")}
		end timeout
	end tell
end xx_evaluate_in_sheet

on xx_long_address(bookName, sheetName)
	tell application "Microsoft Excel"
		with timeout of 30 seconds
			set sh to worksheet sheetName of workbook bookName
			set acc to range "A1" of sh
			repeat with i from 2 to 60
				set another to range ("A" & (2 * i)) of sh
				set acc to (union range1 acc range2 another)
			end repeat
			set told to get address of acc
			return {length of told, told}
		end timeout
	end tell
end xx_long_address

on xx_qualified_range(sheetName)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			return get address of range ("'" & sheetName & "'!A1")
		end timeout
	end tell
end xx_qualified_range

-- May open a dialog that asks for a file; until it is closed Excel answers nothing.
on xx_missing_sheet()
	tell application "Microsoft Excel"
		with timeout of 30 seconds
			return get address of range "'Quorin asks for no such sheet'!A1"
		end timeout
	end tell
end xx_missing_sheet

on xx_errors_as_text(bookName, sheetName)
	tell application "Microsoft Excel"
		with timeout of 10 seconds
			set sh to worksheet sheetName of workbook bookName
			set formula of range "H1" of sh to "=1/0"
			set value of range "H2" of sh to 5
			return {string value of range "H1:H2" of sh, string value of range "H1" of sh, value2 of range "H1" of sh}
		end timeout
	end tell
end xx_errors_as_text

-- Has taken Excel down in some of its versions.
on xx_errors_in_bulk(bookName, sheetName)
	tell application "Microsoft Excel"
		with timeout of 10 seconds
			set sh to worksheet sheetName of workbook bookName
			set formula of range "H1" of sh to "=1/0"
			set value of range "H2" of sh to 5
			set value of range "I1" of sh to 6
			set value of range "I2" of sh to 7
			return {value2 of range "H1:H2" of sh, value2 of range "H1:I2" of sh}
		end timeout
	end tell
end xx_errors_in_bulk
