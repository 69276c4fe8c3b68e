-- Highlights: conditional formats with one sentinel formula, by which alone they are found again.
-- The formula has no function names, so it means the same in every language of Excel.

-- The worksheet of that name. Names are looked up in lists first: asking Excel for a sheet that a
-- workbook lacks opens a file dialog.
on qx_cf_sheet(bookName, sheetName)
	tell application "Microsoft Excel"
		with timeout of 3 seconds
			set bookNames to name of every workbook
			if class of bookNames is not list then set bookNames to {bookNames}
			if bookNames does not contain {bookName} then error ("workbook not open: " & bookName) number -1728
			try
				set sheetNames to name of every worksheet of workbook bookName
				if class of sheetNames is not list then set sheetNames to {sheetNames}
				if sheetNames contains {sheetName} then return worksheet sheetName of workbook bookName
			on error msg number n
				if n is -1728 then set n to -10000 -- only the names may tell that something is gone
				error msg number n
			end try
			error ("sheet not found: " & sheetName) number -1728
		end timeout
	end tell
end qx_cf_sheet

-- The range of an address on sheet sh, else of a defined name of the active workbook; in this
-- order, so that a name spelled like an address cannot take its place. Counting the cells is what
-- makes Excel look whether the range exists.
on qx_bindaddr(addr, sh)
	tell application "Microsoft Excel"
		with timeout of 3 seconds
			try
				set rg to range (addr) of sh
				if (count of cells of rg) > 0 then return rg
			on error msg number n
				if my qx_cf_mute(n) then error msg number n
			end try
			try
				set rg to reference range of named item (addr) of active workbook
				if (count of cells of rg) > 0 then return rg
			on error msg number n
				if my qx_cf_mute(n) then error msg number n
			end try
			error ("range does not exist: " & addr) number -1728
		end timeout
	end tell
end qx_bindaddr

-- One range for many addresses, bound in texts of at most 50 joined by sepc, the list separator of
-- the user's Excel or not. A missing value when that does not work out: an address that the
-- separator would cut in two, a text that Excel does not bind, or fewer cells than addresses.
on qx_joinedbind(addrs, sepc, sh)
	set addrTotal to count of addrs
	repeat with i from 1 to addrTotal
		if (item i of addrs) contains "[" or (item i of addrs) contains sepc then return missing value
	end repeat
	tell application "Microsoft Excel"
		with timeout of 3 seconds
			try
				set acc to missing value
				set i to 1
				repeat while i <= addrTotal
					set joined to item i of addrs
					set taken to 1
					set i to i + 1
					repeat while taken < 50 and i <= addrTotal
						set joined to joined & sepc & (item i of addrs)
						set taken to taken + 1
						set i to i + 1
					end repeat
					set rg to range (joined) of sh
					if (count of cells of rg) < taken then return missing value
					if acc is missing value then
						set acc to rg
					else
						set acc to (union range1 acc range2 rg)
					end if
				end repeat
				return acc
			on error
				return missing value
			end try
		end timeout
	end tell
end qx_joinedbind

-- A range for one or many addresses of sheet sh. Excel's own text for several areas uses the user's
-- list separator, so both are tried before each address is bound alone.
on qx_rangefromaddrs(addrs, sh)
	tell application "Microsoft Excel"
		with timeout of 3 seconds
			if (count of addrs) is 1 then return my qx_bindaddr(item 1 of addrs, sh)
			set rg to my qx_joinedbind(addrs, ",", sh)
			if rg is not missing value then return rg
			set rg to my qx_joinedbind(addrs, ";", sh)
			if rg is not missing value then return rg
			set acc to my qx_bindaddr(item 1 of addrs, sh)
			repeat with i from 2 to count of addrs
				set another to my qx_bindaddr(item i of addrs, sh)
				set acc to (union range1 acc range2 another)
			end repeat
			return acc
		end timeout
	end tell
end qx_rangefromaddrs

-- Makes one sentinel condition on rg, in the colour r, g, b, and returns how many rules of the
-- user's were there. Only then is its priority written, because that clears Excel's undo history.
on qx_cf_make(rg, r, g, b)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			set sentinel to "=\"QXZ\"=\"QXZ\""
			set theirs to my qx_cf_foreign(rg)
			set rulesBefore to count of format conditions of rg
			-- Releases differ in which of the two forms they take, and in what they answer: the new
			-- condition is looked for, the last sentinel of the range.
			try
				make new format condition at rg with properties {format condition type:expression, formula1:sentinel}
			on error msg number n
				if my qx_cf_mute(n) then error msg number n
				if (count of format conditions of rg) is rulesBefore then
					tell rg
						make new format condition at end with properties {format condition type:expression, formula1:sentinel}
					end tell
				end if
			end try
			set newest to count of format conditions of rg
			if newest is not rulesBefore + 1 then error "Excel made no condition" number -2700
			repeat until newest is 0 or my qx_cf_ours(rg, newest)
				set newest to newest - 1
			end repeat
			if newest is 0 then error "Excel made no condition" number -2700
			-- A condition that could not be coloured must not stay behind.
			try
				set color of interior object of format condition newest of rg to {r, g, b}
				if theirs > 0 then set format condition priority of format condition newest of rg to 1
			on error msg number n
				try
					if my qx_cf_ours(rg, newest) then delete format condition newest of rg
				end try
				error msg number n
			end try
			return theirs
		end timeout
	end tell
end qx_cf_make

-- {conditions made, rules of the user's that were there}: one condition for all addresses, or,
-- where that fails, one for each.
on qx_cf_apply(addrs, bookName, sheetName, r, g, b)
	set sh to my qx_cf_sheet(bookName, sheetName)
	try
		set rg to my qx_rangefromaddrs(addrs, sh)
		set theirs to my qx_cf_make(rg, r, g, b)
		return {1, theirs}
	on error msg number n
		if my qx_cf_mute(n) then error msg number n
	end try
	set made to 0
	set theirs to 0
	repeat with i from 1 to count of addrs
		set rg to my qx_bindaddr(item i of addrs, sh)
		set theirs to theirs + (my qx_cf_make(rg, r, g, b))
		set made to made + 1
	end repeat
	return {made, theirs}
end qx_cf_apply

-- Deletes the sentinel conditions of these addresses, together and each alone, and returns how many
-- that were. What one of them covers beyond these addresses goes with it, and is not counted. An
-- address that no longer binds is passed over; a name is looked up in the workbook that it was recorded
-- for too, which need not be in front. Where the records lead nowhere any more, what they stood for is
-- looked for everywhere, and not counted.
on qx_cf_clear(addrs, bookName, sheetName)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			try
				set sh to my qx_cf_sheet(bookName, sheetName)
			on error msg number n
				if n is -1728 then my qx_cf_strays(addrs, bookName, sheetName)
				error msg number n
			end try
			try
				set {places, allBound, together} to my qx_cf_places(addrs, bookName, sh)
				set beyond to {}
				if together is not missing value then set beyond to my qx_cf_beyond(together)
				set gone to 0
				repeat with k from 1 to count of places
					set gone to gone + (my qx_cf_remove(item k of places))
				end repeat
				repeat with k from 1 to count of beyond
					my qx_cf_remove(item k of beyond)
				end repeat
				if not allBound then my qx_cf_sweep(bookName)
				my qx_cf_copies(addrs, bookName, sheetName)
				return gone
			on error msg number n
				-- The sheet was there: what is missing now must not pass for a sheet that is gone.
				if n is -1728 then set n to -10000
				error msg number n
			end try
		end timeout
	end tell
end qx_cf_clear

-- Deletes the sentinel conditions of rg and returns how many that were. Backwards, for the numbers
-- move up.
on qx_cf_remove(rg)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			set gone to 0
			repeat with i from (count of format conditions of rg) to 1 by -1
				if my qx_cf_ours(rg, i) then
					delete format condition i of rg
					set gone to gone + 1
				end if
			end repeat
			return gone
		end timeout
	end tell
end qx_cf_remove

-- What the sentinels of rg cover where one covers more than rg: rows or columns came within since it was
-- made, or carried a part of it away. Releases that do not tell leave that where it is.
on qx_cf_beyond(rg)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			set found to {}
			try
				set cellTotal to count of cells of rg
				repeat with i from 1 to count of format conditions of rg
					if my qx_cf_ours(rg, i) then
						set covered to applies to of format condition i of rg
						set joined to (union range1 rg range2 covered)
						if (count of cells of joined) is not cellTotal then set end of found to covered
					end if
				end repeat
			on error msg number n
				if my qx_cf_mute(n) then error msg number n
			end try
			return found
		end timeout
	end tell
end qx_cf_beyond

-- Deletes every sentinel condition of a sheet and returns how many that were: those whose recorded cells
-- have none any more, because rows or columns came or went.
on qx_cf_moved(bookName, sheetName)
	set sh to my qx_cf_sheet(bookName, sheetName)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			return my qx_cf_remove(entire row of range "A:A" of sh)
		end timeout
	end tell
end qx_cf_moved

-- Deletes every sentinel condition of a workbook: a sheet may have another name now, or the name
-- that cells were marked by may be gone, and they may lie on any sheet. Whoever clears clears all.
on qx_cf_sweep(bookName)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			set sheetNames to name of every worksheet of workbook bookName
			if class of sheetNames is not list then set sheetNames to {sheetNames}
			repeat with k from 1 to count of sheetNames
				my qx_cf_remove(entire row of range "A:A" of worksheet (item k of sheetNames) of workbook bookName)
			end repeat
			return true
		end timeout
	end tell
end qx_cf_sweep

-- The same in a workbook whose sheet is gone, or in all of them when the workbook itself is: it may
-- have been saved under another name. The record goes whatever comes of it, so an error is none.
on qx_cf_strays(addrs, bookName, sheetName)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			try
				set bookNames to name of every workbook
				if class of bookNames is not list then set bookNames to {bookNames}
				if bookNames contains {bookName} then set bookNames to {bookName}
				repeat with k from 1 to count of bookNames
					my qx_cf_sweep(item k of bookNames)
				end repeat
				my qx_cf_copies(addrs, bookName, sheetName)
			end try
			return true
		end timeout
	end tell
end qx_cf_strays

-- Deletes the sentinel conditions of these addresses on the copies of the sheet, which took them
-- along: "Sheet (2)" in whichever workbook, and a sheet of its name in another, which may as well be
-- the sheet itself, moved there. Excel shortens a name to make room for the number.
on qx_cf_copies(addrs, bookName, sheetName)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			set stem to sheetName
			if (length of stem) > 27 then set stem to text 1 thru 27 of stem
			set bookNames to name of every workbook
			if class of bookNames is not list then set bookNames to {bookNames}
			repeat with k from 1 to count of bookNames
				set oneBook to item k of bookNames
				set sheetNames to name of every worksheet of workbook oneBook
				if class of sheetNames is not list then set sheetNames to {sheetNames}
				repeat with j from 1 to count of sheetNames
					set oneSheet to item j of sheetNames
					if oneSheet is sheetName then
						set isCopy to oneBook is not bookName
					else
						set isCopy to oneSheet starts with (stem & " (")
					end if
					if isCopy then
						set {places, allBound, together} to my qx_cf_places(addrs, oneBook, worksheet oneSheet of workbook oneBook)
						repeat with m from 1 to count of places
							my qx_cf_remove(item m of places)
						end repeat
					end if
				end repeat
			end repeat
			return true
		end timeout
	end tell
end qx_cf_copies

-- The ranges of these addresses, all together and each alone, whether each of them binds, and the one
-- range of all; a missing value where Excel makes none.
on qx_cf_places(addrs, bookName, sh)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			set theirNames to {}
			if name of active workbook is not bookName then
				set theirNames to name of every named item of workbook bookName
				if class of theirNames is not list then set theirNames to {theirNames}
			end if
			set places to {}
			set allBound to true
			set together to missing value
			if (count of addrs) > 1 then
				try
					set together to my qx_rangefromaddrs(addrs, sh)
					set end of places to together
				on error msg number n
					if my qx_cf_mute(n) then error msg number n
				end try
			end if
			repeat with i from 1 to count of addrs
				set placesBefore to count of places
				try
					set end of places to my qx_bindaddr(item i of addrs, sh)
				on error msg number n
					if my qx_cf_mute(n) then error msg number n
				end try
				if theirNames contains {item i of addrs} then
					try
						set end of places to (reference range of named item (item i of addrs) of workbook bookName)
					on error msg number n
						if my qx_cf_mute(n) then error msg number n
					end try
				end if
				if (count of places) is placesBefore then set allBound to false
			end repeat
			if (count of addrs) is 1 and (count of places) is 1 then set together to item 1 of places
			return {places, allBound, together}
		end timeout
	end tell
end qx_cf_places

-- Whether condition i of rg is a sentinel. Conditions of other kinds have no formula to read, and
-- one that cannot be read is the user's.
on qx_cf_ours(rg, i)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			try
				considering case
					if (formula1 of format condition i of rg) is "=\"QXZ\"=\"QXZ\"" then return true
				end considering
			on error msg number n
				if my qx_cf_mute(n) then error msg number n
			end try
			return false
		end timeout
	end tell
end qx_cf_ours

-- How many conditions of rg are the user's.
on qx_cf_foreign(rg)
	tell application "Microsoft Excel"
		with timeout of 8 seconds
			set theirs to 0
			repeat with i from 1 to (count of format conditions of rg)
				if not (my qx_cf_ours(rg, i)) then set theirs to theirs + 1
			end repeat
			return theirs
		end timeout
	end tell
end qx_cf_foreign

-- Whether an error says nothing of the object asked for, because Excel did not answer: timed out,
-- died, not running, busy. It then must not pass for "not there".
on qx_cf_mute(n)
	return {-1712, -609, -600, -10000} contains {n}
end qx_cf_mute
