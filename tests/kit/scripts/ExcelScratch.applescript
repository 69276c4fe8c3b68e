-- A scratch workbook in a running Excel, for the contract suite of the handlers: made, filled, moved
-- about in and closed without saving, always by its name.

on sc_names()
	tell application "Microsoft Excel"
		with timeout of 20 seconds
			set found to {}
			repeat with i from 1 to count of workbooks
				set end of found to name of workbook i
			end repeat
			return found
		end timeout
	end tell
end sc_names

-- The new workbook's name, with one sheet for each of the names.
on sc_open(sheetNames)
	set namesBefore to my sc_names()
	tell application "Microsoft Excel"
		with timeout of 60 seconds
			make new workbook
			set bookName to missing value
			repeat with each1 in my sc_names()
				if namesBefore does not contain {contents of each1} then set bookName to contents of each1
			end repeat
			if bookName is missing value then error "Excel made no workbook of its own" number -2700
			repeat while (count of worksheets of workbook bookName) < (count of sheetNames)
				make new worksheet at end of workbook bookName
			end repeat
			repeat with i from 1 to count of sheetNames
				set name of worksheet i of workbook bookName to item i of sheetNames
			end repeat
			return bookName
		end timeout
	end tell
end sc_open

on sc_value(bookName, sheetName, addr, wanted)
	tell application "Microsoft Excel"
		with timeout of 20 seconds
			set value of range addr of worksheet sheetName of workbook bookName to wanted
		end timeout
	end tell
	return true
end sc_value

on sc_formula(bookName, sheetName, addr, wanted)
	tell application "Microsoft Excel"
		with timeout of 20 seconds
			set formula of range addr of worksheet sheetName of workbook bookName to wanted
		end timeout
	end tell
	return true
end sc_formula

-- A name of the workbook, or of one of its sheets.
on sc_define(bookName, sheetName, wanted, refersTo)
	tell application "Microsoft Excel"
		with timeout of 20 seconds
			if sheetName is "" then
				make new named item at workbook bookName with properties {name:wanted, references:refersTo}
			else
				make new named item at worksheet sheetName of workbook bookName with properties {name:wanted, references:refersTo}
			end if
		end timeout
	end tell
	return true
end sc_define

on sc_goto(bookName, sheetName, addr)
	tell application "Microsoft Excel"
		with timeout of 20 seconds
			goto reference (range addr of worksheet sheetName of workbook bookName)
		end timeout
	end tell
	return true
end sc_goto

on sc_close(bookName)
	tell application "Microsoft Excel"
		with timeout of 20 seconds
			close workbook bookName saving no
		end timeout
	end tell
	return true
end sc_close
