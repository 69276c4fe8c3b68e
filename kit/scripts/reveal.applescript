-- Bringing a cell into view: reading where it is, unhiding its rows and columns, scrolling.

-- {first row, first column, rows, columns of the target, active sheet, first row, first column,
-- rows, columns of the visible range, whether the target's rows are hidden, its columns (a missing
-- value where some are), address of its visible cells or ""}. Where all rows or all columns of the
-- target are hidden, and not all of the others, the visible cells are those of its whole columns or
-- rows. A name of cells on another sheet is error -1728.
on qx_revealread(addr, sheetName, bookName)
	tell application "Microsoft Excel"
		with timeout of 3 seconds
			set sh to my qx_cf_sheet(bookName, sheetName)
			set rg to my qx_bindaddr(addr, sh)
			-- A name may stand for cells of another sheet. Their row and column numbers mean nothing
			-- on this one.
			if name of worksheet object of rg is not sheetName then error ("range is on another sheet: " & addr) number -1728
			set inView to visible range of active window
			set rowTotal to count of rows of rg
			set colTotal to count of columns of rg
			set rowsAway to hidden of entire row of rg
			set colsAway to hidden of entire column of rg
			-- Where every column is hidden no cell is visible, and the rows are told by what is visible
			-- beside; in the same way the columns.
			set looked to rg
			if colsAway is true and rowsAway is not true and rowTotal > 1 then set looked to entire row of rg
			if rowsAway is true and colsAway is not true and colTotal > 1 then set looked to entire column of rg
			-- None visible is an error, and a missing value stands for "not known".
			try
				set seen to my qx_address(special cells looked type cell type visible)
			on error msg number n
				if my qx_cf_mute(n) then error msg number n
				set seen to ""
			end try
			return {first row index of rg, first column index of rg, rowTotal, colTotal, name of active sheet, first row index of inView, first column index of inView, count of rows of inView, count of columns of inView, rowsAway, colsAway, seen}
		end timeout
	end tell
end qx_revealread

-- Sets the hidden flag of every row and column of the runs, {first, last} each, one by one, and
-- returns how many that were. Rows and columns are addressed as ranges, "5:5" and "B:B": setting
-- properties of a row or column by its number fails in some releases.
on qx_unhide(sheetName, bookName, rowRuns, colRuns, hideIt)
	set spots to {}
	repeat with k from 1 to count of rowRuns
		set run1 to item k of rowRuns
		repeat with i from (item 1 of run1) to (item 2 of run1)
			set end of spots to ((i as integer) as text) & ":" & ((i as integer) as text)
		end repeat
	end repeat
	repeat with k from 1 to count of colRuns
		set run1 to item k of colRuns
		repeat with i from (item 1 of run1) to (item 2 of run1)
			set letters to ""
			set rest1 to i as integer
			repeat while rest1 > 0
				set letters to (character (((rest1 - 1) mod 26) + 1) of "ABCDEFGHIJKLMNOPQRSTUVWXYZ") & letters
				set rest1 to (rest1 - 1) div 26
			end repeat
			set end of spots to letters & ":" & letters
		end repeat
	end repeat
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			set sh to my qx_cf_sheet(bookName, sheetName)
			repeat with k from 1 to count of spots
				set spot to item k of spots
				set hidden of range (spot) of sh to hideIt
			end repeat
			return (count of spots)
		end timeout
	end tell
end qx_unhide

-- Scrolls the window so that the row and column are at its top left, on the sheet's tab when
-- doActivate says so, and returns where the active cell is then, as qx_pollcell does.
on qx_revealscroll(rowN, colN, sheetName, bookName, doActivate)
	tell application "Microsoft Excel"
		with timeout of 3 seconds
			if doActivate then
				-- For the check that both are there.
				my qx_cf_sheet(bookName, sheetName)
				activate object worksheet sheetName of workbook bookName
			end if
			set scroll row of active window to rowN
			set scroll column of active window to colN
			return {name of active workbook, name of active sheet, (get address of active cell)}
		end timeout
	end tell
end qx_revealscroll
