// What makes the library handier in C#: replies as return values instead of ref arguments, and failures as exceptions.
using System;

namespace KespCommObj
{
    /// <summary>A Query, QueryBinary or Update that failed: what the object said of it.</summary>
    public sealed class KespException : Exception
    {
        internal KespException(_CKespCommObj comm) : base(comm.CommErrorDescr)
        {
            Status = comm.CommError;
            Source = comm.CommErrorSource;
        }

        /// <summary>CommError of the object.</summary>
        public ECommError Status { get; private set; }
    }

    /// <summary>The members that take an argument by reference, without it.</summary>
    public static class KespExtensions
    {
        /// <summary>Sets CommStyle.</summary>
        public static void SetCommStyle(this _CKespCommObj comm, ECommStyle value)
        {
            comm.PutCommStyle(ref value);
        }

        /// <summary>The reply to a command as text. Throws KespException where Query returns false.</summary>
        public static string Query(this _CKespCommObj comm, string cmd, string OmegaAddress = "",
                                   string OmegaValue = "")
        {
            string result = "";
            if (!comm.Query(ref result, cmd, OmegaAddress, OmegaValue)) throw new KespException(comm);
            return result;
        }

        /// <summary>The reply to a command as bytes. Throws KespException where QueryBinary returns false.</summary>
        /// <remarks>At a COM port call SetInputMode(imBinary) before: in the mode imText, which is the first, the reply
        /// is text, which raises InvalidOperationException.</remarks>
        public static byte[] QueryBinary(this _CKespCommObj comm, string cmd, string OmegaAddress = "",
                                         string OmegaValue = "")
        {
            object result = null;
            if (!comm.QueryBinary(ref result, cmd, OmegaAddress, OmegaValue)) throw new KespException(comm);
            return Bytes(result);
        }

        /// <summary>Sends a command that has no reply. Throws KespException where Update returns false.</summary>
        public static void Send(this _CKespCommObj comm, string cmd, string OmegaAddress = "", string OmegaValue = "")
        {
            if (!comm.Update(cmd, OmegaAddress, OmegaValue)) throw new KespException(comm);
        }

        /// <summary>What a detection found; null when it found nothing.</summary>
        public static string DetectInstrument(this _CKespCommObj comm,
                                              EDetectLevel DetectLevel = EDetectLevel.dlAllCommands)
        {
            string result = "";
            return comm.DetectInstrument(ref result, DetectLevel) ? result : null;
        }

        /// <summary>What a detection found; null when it found nothing or a handler set Abort.</summary>
        public static string AutoDetect(this _CKespTCP tcp, EDetectLevel DetectLevel = EDetectLevel.dlAllCommands)
        {
            string result = "";
            return tcp.AutoDetect(ref result, DetectLevel) ? result : null;
        }

        /// <summary>What a detection found; null when it found nothing or a handler set Abort.</summary>
        public static string AutoDetect(this _CKespCOMPort3 port,
                                        EDetectLevel DetectLevel = EDetectLevel.dlAllCommands,
                                        string OmegaAddress = "")
        {
            string result = "";
            return port.AutoDetect(ref result, DetectLevel, OmegaAddress) ? result : null;
        }

        /// <summary>What a search found; null when it found nothing or a handler set Abort.</summary>
        public static string AutoDetect(this _CKespIEEE ieee, EDetectLevel DetectLevel = EDetectLevel.dlAllCommands,
                                        ESearchOption SearchOption = ESearchOption.soFindFirst)
        {
            string result = "";
            return ieee.AutoDetect(ref result, DetectLevel, SearchOption) ? result : null;
        }

        /// <summary>A line from the instrument; null where ReadLine returns false.</summary>
        public static string ReadLine(this _CKespTCP tcp)
        {
            string result = "";
            return tcp.ReadLine(ref result) ? result : null;
        }

        /// <summary>A line from the instrument; null where ReadLine returns false.</summary>
        public static string ReadLine(this _CKespCOMPort3 port)
        {
            string result = "";
            return port.ReadLine(ref result) ? result : null;
        }

        /// <summary>A part of a reply, at most 50 characters; null where ReadLine returns false.</summary>
        public static string ReadLine(this _CKespIEEE ieee)
        {
            string result = "";
            return ieee.ReadLine(ref result) ? result : null;
        }

        /// <summary>The bytes that came in time; null where ReadLineBinary returns false.</summary>
        public static byte[] ReadLineBinary(this _CKespTCP tcp, int lTimeoutms = 100)
        {
            object result = null;
            return tcp.ReadLineBinary(ref result, lTimeoutms) ? Bytes(result) : null;
        }

        /// <summary>The bytes that came in time; null where ReadLineBinary returns false.</summary>
        /// <remarks>Call SetInputMode(imBinary) before: in the mode imText, which is the first, the reply is text, which
        /// raises InvalidOperationException.</remarks>
        public static byte[] ReadLineBinary(this _CKespCOMPort3 port, int lTimeoutms = 100)
        {
            object result = null;
            return port.ReadLineBinary(ref result, lTimeoutms) ? Bytes(result) : null;
        }

        /// <summary>All that the instrument sends until it is silent; null where Download returns false.</summary>
        public static string Download(this _CKespCOMPort3 port)
        {
            string result = "";
            return port.Download(ref result) ? result : null;
        }

        /// <summary>The settings of the radio modem; null where RFReadModemSettings returns false.</summary>
        public static RadioModemSettings RFReadModemSettings(this _CKespCOMPort3 port)
        {
            var found = new RadioModemSettings();
            return port.RFReadModemSettings(ref found.serial, ref found.power, ref found.panId, ref found.channel,
                                            ref found.address, ref found.timeout) ? found : null;
        }

        /// <summary>Sets DataBits.</summary>
        public static void SetDataBits(this _CKespCOMPort3 port, EKespDataBits3 value)
        {
            port.PutDataBits(ref value);
        }

        /// <summary>Sets StopBits.</summary>
        public static void SetStopBits(this _CKespCOMPort3 port, EKespStopBits3 value)
        {
            port.PutStopBits(ref value);
        }

        /// <summary>Sets Parity.</summary>
        public static void SetParity(this _CKespCOMPort3 port, EKespParity3 value)
        {
            port.PutParity(ref value);
        }

        // Text cannot be turned back: its letters are those of the ANSI code page.
        private static byte[] Bytes(object result)
        {
            if (result is string)
                throw new InvalidOperationException("The reply is text: call SetInputMode(imBinary) before");
            return (byte[])result;
        }
    }
}
