-- Formulas, dependents, the map of the workbook, and evaluation in a scratch workbook.

-- {formulas, rows, columns} when onlyf, {formulas, "__ERRCOL", rows, columns, "", cells} when the
-- values cannot be read, {formulas, values, rows, columns, displayed texts or "", cells} otherwise,
-- or a refusal as qx_readrange gives it. Formulas are safe to read where values are not. fmt is
-- "r1c1" or anything else for A1.
on qx_readformulas(addr, fmt, onlyf)
	tell application "Microsoft Excel"
		with timeout of 3 seconds
			set rg to my qx_bindrange(addr)
			set {rowTotal, colTotal, cellTotal} to my qx_extent(rg)
			if cellTotal > 20000 then return {"__TOOBIG", rowTotal, colTotal, cellTotal}
			if cellTotal is not rowTotal * colTotal then return {"__MULTI", rowTotal, colTotal, cellTotal}
			if fmt is "r1c1" then
				set written to formula r1c1 of rg
			else
				set written to formula of rg
			end if
			if onlyf then return {written, rowTotal, colTotal}
			if colTotal > 1 then
				if my qx_errcol(rg, rowTotal) then return {written, "__ERRCOL", rowTotal, colTotal, "", cellTotal}
			end if
			set shown to ""
			if cellTotal <= 5000 then set shown to string value of rg
			return {written, value2 of rg, rowTotal, colTotal, shown, cellTotal}
		end timeout
	end tell
end qx_readformulas

-- The address of the direct dependents, "" when Excel says that there are none. It says so with
-- error -1708; other releases are known to answer with -50, -1728 or a missing value. What it finds
-- may be one range of several areas or a list of ranges.
on qx_dependents(addr)
	tell application "Microsoft Excel"
		with timeout of 3 seconds
			set rg to my qx_bindrange(addr)
			-- Read once, so that an address that does not exist is an error and not "none".
			set home to get address of rg
			if home is missing value then error ("range does not exist: " & addr) number -1728
			set joined to ""
			try
				set found to direct dependents of rg
				set isMany to false
				try
					set isMany to (class of found is list)
				end try
				if not isMany then set found to {found}
				repeat with i from 1 to count of found
					set told to missing value
					if item i of found is not missing value then set told to my qx_address(item i of found)
					if class of told is text then
						if joined is not "" then set joined to joined & ","
						set joined to joined & told
					end if
				end repeat
			on error msg number n
				if my qx_lacks(n) then return ""
				error msg number n
			end try
			return joined
		end timeout
	end tell
end qx_dependents

-- {workbook, names of all worksheets, used ranges of the first 50 ("" where there is none), names
-- of the defined names, what they refer to}.
on qx_workbookmap()
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			set bookName to name of active workbook
			set sheetNames to name of every worksheet of workbook bookName
			if sheetNames is missing value then set sheetNames to {}
			if class of sheetNames is not list then set sheetNames to {sheetNames}
			set upTo to count of sheetNames
			if upTo > 50 then set upTo to 50
			set usedAreas to {}
			repeat with i from 1 to upTo
				try
					set place to get address of used range of worksheet i of workbook bookName
				on error
					set place to ""
				end try
				if place is missing value then set place to ""
				set end of usedAreas to place
			end repeat
			set itemNames to name of every named item of workbook bookName
			if itemNames is missing value then set itemNames to {}
			if class of itemNames is not list then set itemNames to {itemNames}
			set itemTotal to count of itemNames
			set meanings to {}
			if itemTotal > 0 then
				-- All at once where Excel can, else one by one.
				try
					set meanings to references of every named item of workbook bookName
				end try
				if class of meanings is not list then set meanings to {meanings}
				if (count of meanings) is not itemTotal then
					set meanings to {}
					repeat with i from 1 to itemTotal
						set end of meanings to references of named item i of workbook bookName
					end repeat
				end if
			end if
			return {bookName, sheetNames, usedAreas, itemNames, meanings}
		end timeout
	end tell
end qx_workbookmap

-- The value of the last of a chain of formula bodies, written one below the other into column A of
-- a scratch workbook, so that each can use the ones above it. The scratch workbook is closed
-- unsaved and the user's workbook activated again on every path.
on qx_deepeval(plan)
	set entryTotal to count of plan
	if entryTotal is 0 then error "deep-eval plan empty" number -9001
	if entryTotal > 40 then error "deep-eval exceeds 40 entries" number -9002
	repeat with i from 1 to entryTotal
		if (length of (item i of plan)) > 254 then error "deep-eval entry exceeds 255 characters" number -9003
	end repeat
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			-- Names, not references: a reference to the active workbook would follow it.
			set userBook to name of active workbook
			set openBooks to my qx_deep_books()
			set madeBook to missing value
			try
				make new workbook
				try
					set madeBook to result
				end try
			on error msg number n
				-- What was made all the same has to go.
				my qx_deep_leave(my qx_deep_found(openBooks, madeBook), userBook)
				error msg number n
			end try
			set scratch to my qx_deep_found(openBooks, madeBook)
		end timeout
		if scratch is "" then error "Excel made no scratch workbook" number -2700
		try
			with timeout of 60 seconds
				repeat with i from 1 to entryTotal
					set spot to "A" & i
					set body to "=" & (item i of plan)
					-- The plain formula setter would cut a spilling result down to its first cell.
					set formula2 of range (spot) of worksheet 1 of workbook scratch to body
					-- Excel cuts long text off without a word.
					set kept to formula2 of range (spot) of worksheet 1 of workbook scratch
					if class of kept is not text then set kept to ""
					if (length of kept) is not (length of body) then error "deep-eval: Excel truncated an entry" number -9004
				end repeat
				set filled to "$A$1"
				if entryTotal > 1 then set filled to "$A$1:$A$" & entryTotal
				if (get address of used range of worksheet 1 of workbook scratch) is not filled then error "deep-eval: an intermediate result spilled" number -9005
				set spot to "A" & entryTotal
				set outcome to value2 of range (spot) of worksheet 1 of workbook scratch
				if outcome is missing value then
					set shown to string value of range (spot) of worksheet 1 of workbook scratch
					if class of shown is text and shown starts with "#" then set outcome to shown
				end if
			end timeout
		on error msg number n
			my qx_deep_leave(scratch, userBook)
			error msg number n
		end try
		my qx_deep_leave(scratch, userBook)
		return outcome
	end tell
end qx_deepeval

-- How many workbooks are open: shows from outside that no scratch workbook was left.
on qx_workbookcount()
	tell application "Microsoft Excel"
		with timeout of 2 seconds
			return (count of workbooks)
		end timeout
	end tell
end qx_workbookcount

-- The names of the open workbooks, {} for none.
on qx_deep_books()
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			set openBooks to name of every workbook
			if openBooks is missing value then return {}
			if class of openBooks is not list then return {openBooks}
			return openBooks
		end timeout
	end tell
end qx_deep_books

-- The name of the workbook that was made since openBooks were the open ones, "" for none. The user
-- may have opened one meanwhile, and what is found is closed unsaved: so it must have a single
-- untouched cell, no file, which would show as a suffix, and be the only one of its kind, or the one
-- that Excel says it made.
on qx_deep_found(openBooks, madeBook)
	set newBooks to {}
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			repeat 2 times
				try
					set newBooks to {}
					set booksNow to my qx_deep_books()
					repeat with i from 1 to count of booksNow
						set oneName to item i of booksNow
						if openBooks does not contain {oneName} and oneName does not contain "." then
							set blank1 to (get address of used range of worksheet 1 of workbook oneName) is "$A$1"
							if blank1 then set blank1 to (formula of range "A1" of worksheet 1 of workbook oneName) is ""
							if blank1 then set end of newBooks to oneName
						end if
					end repeat
					exit repeat
				end try
			end repeat
		end timeout
	end tell
	if (count of newBooks) is 1 then return item 1 of newBooks
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			try
				set madeName to name of madeBook
				if newBooks contains {madeName} then return madeName
			end try
		end timeout
	end tell
	return ""
end qx_deep_found

-- Closes the scratch workbook unsaved and puts the user's in front again. Never fails, and tries
-- what failed a second time: a scratch workbook left behind would be the user's to close. Excel
-- refuses to activate while it is not in front itself, and has gone back by then.
on qx_deep_leave(scratch, userBook)
	tell application "Microsoft Excel"
		repeat 2 times
			try
				with timeout of 8 seconds
					if scratch is not "" and my qx_deep_books() contains {scratch} then close workbook scratch saving no
				end timeout
				exit repeat
			end try
		end repeat
		repeat 2 times
			try
				with timeout of 8 seconds
					if userBook is not missing value and (name of active workbook) is not userBook then activate object workbook userBook
				end timeout
				exit repeat
			end try
		end repeat
	end tell
	return true
end qx_deep_leave
