-- Cells, values and the selection.
--
-- Everything Quorin does inside Excel is a handler of this library. A handler reads or writes Excel
-- and returns a plain list; what the list means is decided by the native side, by position.
-- The rules that keep the text safe:
--   * Excel is spoken to inside "tell" and "with timeout" alone, and our own handlers are called
--     with "my", or the call would be sent to Excel.
--   * No variable or parameter is spelled like a word of Excel's dictionary: inside "tell" the
--     word would win.
--   * "active cell", "selection" and their like follow the user even when stored in a variable, so
--     what has to stay put is held by name or by address.
--   * Numbers are returned as numbers. Turned into text they would follow the user's locale.
--   * An empty collection is "missing value" in Excel, a collection of one may be a bare value.

-- {"noWorkbook", 0, 0, 0, 0}, or {"ok", left, top, right, bottom} of the front window.
on qx_probe()
	tell application "Microsoft Excel"
		with timeout of 2 seconds
			if (count of workbooks) is 0 then return {"noWorkbook", 0, 0, 0, 0}
			set edges to bounds of window 1
			if class of edges is not list then return {"ok", missing value, missing value, missing value, missing value}
			return {"ok", item 1 of edges, item 2 of edges, item 3 of edges, item 4 of edges}
		end timeout
	end tell
end qx_probe

-- {workbook, sheet, address, row number, column number, formula, local formula, value, address of
-- the selection, address of the current region}. A constant cell's formula is the constant itself.
-- The user may go on while these are read, one after the other: all of them are of the cell whose
-- address is told, and where another sheet has come to the front they are read again.
on qx_readcell()
	tell application "Microsoft Excel"
		with timeout of 3 seconds
			repeat with attempt from 1 to 3
				set bookName to name of active workbook
				set sheetName to name of active sheet
				set spot to get address of active cell
				-- With a chart or a shape selected, the selection is no range and has no address.
				try
					set chosen to my qx_address(selection)
				on error msg number n
					if not (my qx_lacks(n)) then error msg number n
					set chosen to my qx_address(range selection of active window)
				end try
				set c to range spot of active sheet
				-- A protected sheet refuses to tell its regions.
				try
					set nearby to get address of current region of c
				on error msg number n
					if not (my qx_lacks(n)) then error msg number n
					set nearby to ""
				end try
				set facts to {first row index of c, first column index of c, formula of c, formula local of c, value2 of c}
				if (name of active workbook) is bookName and (name of active sheet) is sheetName then
					-- What is selected by now is not around this cell.
					if (get address of active cell) is not spot then set chosen to spot
					return {bookName, sheetName, spot} & facts & {chosen, nearby}
				end if
			end repeat
			error "Another sheet came to the front while the cell was read." number -1712
		end timeout
	end tell
end qx_readcell

-- Excel's value of an expression. Error -1708 when there is none: the expression gives an Excel
-- error, or Excel answers with a missing value.
on qx_evaluate(expr)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			set answer to (evaluate name expr)
			-- An expression that is a reference is answered with the range itself. Its value is read
			-- where that is safe; otherwise the range goes back as it is, and the native side says
			-- that it cannot be passed on.
			set sort1 to missing value
			try
				set sort1 to class of answer
			on error msg number n
				if my qx_cf_mute(n) then error msg number n
			end try
			if sort1 is range or sort1 is cell then
				set {rowTotal, colTotal, cellTotal} to my qx_extent(answer)
				if cellTotal > 20000 or cellTotal is not rowTotal * colTotal then return answer
				if cellTotal > 1 then
					if my qx_errcol(answer, rowTotal) then return answer
				end if
				set answer to value2 of answer
			end if
			if answer is missing value then error "Excel gave no value" number -1708
			return answer
		end timeout
	end tell
end qx_evaluate

-- {values, rows, columns, displayed texts or "", cells}, or a refusal: {"__TOOBIG" or "__MULTI" or
-- "__ERRCOL", rows, columns, cells}. The order of the tests matters: a union may hide an error in
-- its second area, and reading such values would end Excel.
on qx_readrange(addr)
	tell application "Microsoft Excel"
		with timeout of 3 seconds
			set rg to my qx_bindrange(addr)
			set {rowTotal, colTotal, cellTotal} to my qx_extent(rg)
			if cellTotal > 20000 then return {"__TOOBIG", rowTotal, colTotal, cellTotal}
			if cellTotal is not rowTotal * colTotal then return {"__MULTI", rowTotal, colTotal, cellTotal}
			if colTotal > 1 then
				if my qx_errcol(rg, rowTotal) then return {"__ERRCOL", rowTotal, colTotal, cellTotal}
			end if
			set shown to ""
			if cellTotal <= 5000 then set shown to string value of rg
			return {value2 of rg, rowTotal, colTotal, shown, cellTotal}
		end timeout
	end tell
end qx_readrange

-- Whether the first column of range r, which has nr rows, holds an error cell. Reading value2 of
-- several columns then ends Excel (error -609), while the first column alone is safe and comes back
-- without its error rows: a short answer is the sign. Displayed texts are the second check only, for
-- a narrow column shows ### and a localised Excel its own words.
on qx_errcol(r, nr)
	tell application "Microsoft Excel"
		with timeout of 3 seconds
			set vals to value2 of column 1 of r
			if nr is 1 then
				-- The one value may come in a list or two.
				repeat while class of vals is list
					if (count of vals) is not 1 then return true
					set vals to item 1 of vals
				end repeat
				if vals is missing value then return true
			else
				if class of vals is not list then return true
				if (count of vals) is not nr then return true
			end if
			set errs to {}
			set shown to string value of column 1 of r
			if class of shown is not list then set shown to {shown}
			considering case
				-- Every literal has this sign, and few columns do.
				if (shown as text) does not contain "#" then return false
				-- One search for each literal: going through thousands of items one by one is slow.
				repeat with i from 1 to count of errs
					set told to item i of errs
					if shown contains {{told}} or shown contains {told} then return true
				end repeat
			end considering
			return false
		end timeout
	end tell
end qx_errcol

-- Selects the ranges, which lie on one sheet, and returns the address of the selection. "goto"
-- changes to the sheet where "select" does not, and "union" is built pairwise because it takes no
-- more than ten ranges.
on qx_select(addrs)
	tell application "Microsoft Excel"
		with timeout of 3 seconds
			set acc to my qx_bindrange(item 1 of addrs)
			goto reference acc
			repeat with i from 2 to count of addrs
				set another to my qx_bindrange(item i of addrs)
				set acc to (union range1 acc range2 another)
			end repeat
			if (count of addrs) > 1 then select acc
			return my qx_address(selection)
		end timeout
	end tell
end qx_select

-- Goes to the address, unless it is empty, and brings Excel to the front.
on qx_activate(addr)
	tell application "Microsoft Excel"
		with timeout of 3 seconds
			if addr is not "" then
				set rg to my qx_bindrange(addr)
				goto reference rg
			end if
			activate
			return true
		end timeout
	end tell
end qx_activate

-- {workbook, sheet, address of the active cell}. Called several times a second.
on qx_pollcell()
	tell application "Microsoft Excel"
		with timeout of 2 seconds
			return {name of active workbook, name of active sheet, (get address of active cell)}
		end timeout
	end tell
end qx_pollcell

-- The range of an address or a defined name. One with a sheet in front, 'My Sheet'!A1 or
-- [Book.xlsx]Sheet1!A1, is taken apart and bound on that sheet, after a look at the names of the
-- sheets there are: asking Excel for a sheet that a workbook lacks opens a file dialog. Marks in
-- brackets belong to a table's columns, where a quote escapes the next character.
on qx_bindrange(addr)
	set bookPart to ""
	set sheetPart to ""
	set bare to addr
	if addr contains "!" then
		set charTotal to length of addr
		set inQuotes to (addr starts with "'")
		set bang to 0
		set nesting to 0
		set i to 1
		if inQuotes then set i to 2
		repeat while bang is 0 and i < charTotal
			set ch to character i of addr
			if inQuotes and ch is "'" then
				set ch to ""
				if character (i + 1) of addr is "!" then
					set bang to i + 1
				else
					-- Inside the quotes a quote is written twice.
					set ch to "'"
					if character (i + 1) of addr is "'" then set i to i + 1
				end if
			else if not inQuotes then
				if nesting > 0 and ch is "'" then
					set i to i + 1
					set ch to ch & character i of addr
				else if ch is "[" then
					set nesting to nesting + 1
				else if ch is "]" then
					set nesting to nesting - 1
				else if nesting is 0 and ch is "!" then
					set ch to ""
					set bang to i
				end if
			end if
			set sheetPart to sheetPart & ch
			set i to i + 1
		end repeat
		if bang > 0 and bang < charTotal then
			set bare to text (bang + 1) thru charTotal of addr
		else
			set sheetPart to ""
		end if
	end if
	if sheetPart starts with "[" and sheetPart contains "]" then
		set closing to length of sheetPart
		repeat until character closing of sheetPart is "]"
			set closing to closing - 1
		end repeat
		if closing > 2 and closing < (length of sheetPart) then
			set bookPart to text 2 thru (closing - 1) of sheetPart
			set sheetPart to text (closing + 1) thru (length of sheetPart) of sheetPart
		end if
	end if
	tell application "Microsoft Excel"
		with timeout of 3 seconds
			if sheetPart is "" then return range (bare)
			set ownBook to (bookPart is "")
			if ownBook then
				set bookPart to name of active workbook
			else
				set bookNames to name of every workbook
				if class of bookNames is not list then set bookNames to {bookNames}
				if bookNames does not contain bookPart then error ("workbook not open: " & bookPart) number -1728
			end if
			set sheetNames to name of every worksheet of workbook bookPart
			if class of sheetNames is not list then set sheetNames to {sheetNames}
			if sheetNames does not contain sheetPart then
				-- "Book.xlsx!Name" is how Excel itself spells another workbook's name.
				if ownBook then
					set bookNames to name of every workbook
					if class of bookNames is not list then set bookNames to {bookNames}
					if bookNames contains sheetPart then return range (addr)
				end if
				error ("sheet not found: " & sheetPart) number -1728
			end if
			try
				return range (bare) of worksheet sheetPart of workbook bookPart
			on error msg number n
				-- A name of that sheet's may lead to another sheet, where the first does not take it, and
				-- the second of two ends may name the sheet again.
				if n is not -1728 then error msg number n
				return range (addr)
			end try
		end timeout
	end tell
end qx_bindrange

-- {rows, columns, cells} of a range. Rows and columns are those of the first area, cells those of
-- all areas, so that a union shows in the numbers.
on qx_extent(rg)
	tell application "Microsoft Excel"
		with timeout of 3 seconds
			set rowTotal to count of rows of rg
			set colTotal to count of columns of rg
			if rowTotal * colTotal <= 20000 then return {rowTotal, colTotal, count of cells of rg}
			-- The cells of whole sheets are more than Excel can count.
			try
				set cellTotal to count of cells of rg
			on error msg number n
				if my qx_cf_mute(n) then error msg number n
				set cellTotal to rowTotal * colTotal
			end try
			return {rowTotal, colTotal, cellTotal}
		end timeout
	end tell
end qx_extent

-- Whether an error says that an object has no such thing: Excel's -1708, and what other releases are
-- known to say in its place. All else, a time-out for one, is no answer.
on qx_lacks(n)
	return {-1708, -1728, -50} contains {n}
end qx_lacks

-- The address of a range. Excel cuts a long one off at 255 characters, some releases a little
-- earlier, so a range of many areas is then put together from theirs, an event for each. A longer
-- text was not cut.
on qx_address(rg)
	tell application "Microsoft Excel"
		with timeout of 3 seconds
			set told to get address of rg
			if class of told is not text then return told
			if (length of told) < 240 or (length of told) > 255 then return told
			set pieces to get areas of rg
			if class of pieces is not list then return told
			set told to ""
			repeat with i from 1 to count of pieces
				if i > 1 then set told to told & ","
				set told to told & (get address of (item i of pieces))
			end repeat
			return told
		end timeout
	end tell
end qx_address

-- For each address {displayed texts, rows, columns} of its cells; "" where it names none, or no
-- rectangle, or where it would make more than 5000 cells in all.
on qx_readtexts(addrs)
	tell application "Microsoft Excel"
		with timeout of 3 seconds
			set told to {}
			set soFar to 0
			repeat with i from 1 to count of addrs
				set one to ""
				try
					set rg to my qx_bindrange(item i of addrs)
					set {rowTotal, colTotal, cellTotal} to my qx_extent(rg)
					if cellTotal is rowTotal * colTotal and soFar + cellTotal <= 5000 then
						set soFar to soFar + cellTotal
						set one to {string value of rg, rowTotal, colTotal}
					end if
				on error msg number n
					if not (my qx_lacks(n)) then error msg number n
				end try
				set end of told to one
			end repeat
			return told
		end timeout
	end tell
end qx_readtexts
